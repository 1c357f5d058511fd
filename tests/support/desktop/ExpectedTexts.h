#pragma once

#include <array>

// What the program has to say, to the letter, where the tests of several files expect it.

// Message boxes and questions.
inline constexpr const char* NoMemory = "There is not enough memory.";
inline constexpr const char* SaveQuestion = "Do you want to save current Atlavex?";
inline constexpr const char* KeyPrompt = "Atlavex is encrypted. Please enter the encryption key:";
inline constexpr const char* KeyTooShort = "Error: Encryption key must be longer than 4 characters";
inline constexpr const char* NothingLoaded =
    "No data was loaded. Possibly the file is encrypted and your key was incorrect?";
inline constexpr const char* NothingMerged =
    "No data was loaded/merged. Possibly the file is encrypted and your key was incorrect?";
inline constexpr const char* ScaleBeforeSaving = "You must scale the map before you can save the Atlavex!";
inline constexpr const char* ScaleBeforeChoosing = "Current map must be scaled first!";
inline constexpr const char* DeleteMap1 = "Are you sure you want to delete 'map1' map?";
inline constexpr const char* DeleteIcon1 = "Are you sure you want to delete 'icon1' Icon?";
inline constexpr const char* NewMetadataName = "Input name of new metadata";
inline constexpr const char* WorldfileFound = "Worldfile found. Do you want to use it?";
inline constexpr const char* ExportCompleted = "Tile Image Export completed!";
inline constexpr const char* HelpNotStarted =
    "Internet Explorer could not be launched. Please visit https://www.kestova.example/quorvant/guide.asp "
    "for the Developer's Guide";

// The wizards.
inline constexpr const char* WizardCancelled =
    "Wizard canceled! Select 'Bitmap -> Scaling Wizard...' from menu to restart the Wizard.";
inline constexpr const char* ScalingCompleted = "Scaling completed!";
inline constexpr const char* InvalidZone = "Invalid Zone. Should be between 1 and 60";
inline constexpr const char* NoCustomSystem = "No custom datum or grid is selected!";
inline constexpr const char* NoPosition = "You must enter a geografic position!";
inline constexpr const char* NoProjection = "You must select a projection type!";

// The texts of the main window.
inline constexpr const char* PlainTitle = "Quorvant Studio v2.31";
inline constexpr const char* ScaledStatus = "Click on map to verify positions";
inline constexpr const char* NotScaledStatus = "Not scaled";
/// lHeader while the points of a linear scaling are asked for, and the corners of a polar one.
inline constexpr std::array PointPrompts{"Wizard step 3: Click on a known coordinate",
                                         "Wizard step 5: Click on a known coordinate",
                                         "Wizard step 7: Click on a known coordinate"};
inline constexpr std::array CornerPrompts{
    "Wizard step 3: Click on upper left coordinate", "Wizard step 5: Click on lower left coordinate",
    "Wizard step 7: Click on upper right coordinate", "Wizard step 9: Click on lower right coordinate"};
