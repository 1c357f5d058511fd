#include "app/LibraryCommands.h"

#include "app/EditorState.h"
#include "app/EntryLists.h"
#include "app/FileChoosers.h"
#include "app/MapZoom.h"
#include "app/StatusLine.h"
#include "app/Steps.h"
#include "app/TextLines.h"
#include "app/WizardCommands.h"
#include "base/CheckedNumbers.h"
#include "base/ComponentError.h"
#include "component/ObjectTexts.h"
#include "platform/modMessages.h"

#include <QFileInfo>

#include <algorithm>

LibraryCommands::LibraryCommands(const EditorParts& parts, WizardCommands& wizard)
    : state_(parts.state), window_(parts.window), maps_(parts.maps), icons_(parts.icons), zoom_(parts.zoom),
      lines_(parts.lines), status_(parts.status), wizard_(wizard) {}

void LibraryCommands::ClearDisplay() {
    wizard_.Discard();
    maps_.Clear();
    icons_.Clear();
    lines_.SetHeader(QString());
}

bool LibraryCommands::AskToSave() {
    bool mayGoOn = true;
    if (state_.objAtlavex != nullptr && state_.modified) {
        switch (AskYesNoCancel(window_.Widget(), QStringLiteral("Do you want to save current Atlavex?"))) {
        case Answer::Yes:
            mayGoOn = SaveLibrary();
            break;
        case Answer::No:
            break;
        case Answer::Cancel:
            mayGoOn = false;
            break;
        }
    }
    ClearDisplay();
    return mayGoOn;
}

void LibraryCommands::NewLibrary() {
    ClearDisplay();
    state_.objAtlavex.reset();
    state_.modified = false;
    state_.fileName.clear();
    state_.encryptionKey.clear(); // the key is that of the open library, and there is none
    status_.SetScaled(false);
    zoom_.Reset();
    lines_.SetTitle(QString());
    icons_.Refill(-1);
    maps_.Refill(-1);
}

void LibraryCommands::OpenLibrary() {
    if (!AskToSave())
        return;
    if (const auto fileName = ChooseLibraryToOpen(window_))
        LoadLibrary(*fileName);
}

void LibraryCommands::OpenFile(const QString& fileName) {
    if (AskToSave())
        LoadLibrary(fileName);
}

LibraryCommands::Counts LibraryCommands::CountEntries() const {
    return {state_.objAtlavex->MapCount(), state_.objAtlavex->IconCount()};
}

void LibraryCommands::StartEmptyLibrary() {
    ClearDisplay();
    state_.objAtlavex = window_.CreateLibrary();
    // A key belongs to the library that it opened; a mistyped one must never seal the next save.
    state_.encryptionKey.clear();
    // What an opening that fails leaves behind; one that brings maps says otherwise.
    status_.SetScaled(false);
    zoom_.Reset();
    zoom_.SetEnabled(false);
    icons_.Refill(-1);
    maps_.Refill(-1);
}

std::optional<QString> LibraryCommands::AskForKey(bool sealed) {
    if (!sealed)
        return QString();
    const auto key =
        AskText(window_.Widget(), QStringLiteral("Atlavex is encrypted. Please enter the encryption key:"));
    return key && !key->isEmpty() ? key : std::nullopt;
}

void LibraryCommands::LoadLibrary(const QString& fileName) {
    StartEmptyLibrary();
    const std::string file = fileName.toStdString();
    // The component's hosts ask twice, and the second answer counts: that is the agreed sequence of calls.
    state_.objAtlavex->IsEncrypted(file);
    const auto key = AskForKey(state_.objAtlavex->IsEncrypted(file));
    if (!key)
        return;

    Counts before;
    {
        const ComponentCall call(window_);
        before = CountEntries();
        state_.objAtlavex->LoadFromFile(file, key->toStdString());
    }
    if (CountEntries() == before) {
        ShowMessage(
            window_.Widget(),
            QStringLiteral("No data was loaded. Possibly the file is encrypted and your key was incorrect?"));
        return;
    }
    state_.encryptionKey = *key;
    ShowLoadedFile(fileName);
}

void LibraryCommands::ShowLoadedFile(const QString& fileName) {
    state_.fileName = fileName;
    state_.modified = false;
    Steps steps;
    steps.Do([&] { icons_.Refill(0); });
    steps.Do([&] { maps_.Refill(0); });
    status_.ShowStoredScaling();
    lines_.SetTitle(fileName); // it is loaded, whatever of it cannot be shown
    steps.ThrowFirst();
}

bool LibraryCommands::MayBeSaved() {
    if (state_.objAtlavex == nullptr)
        return false;
    if (state_.objAtlavex->MapCount() > 0 && !state_.mapScaled) {
        ShowMessage(window_.Widget(),
                    QStringLiteral("You must scale the map before you can save the Atlavex!"));
        return false;
    }
    return true;
}

bool LibraryCommands::SaveLibrary() {
    if (!MayBeSaved())
        return false;
    if (state_.fileName.isEmpty())
        return SaveLibraryAs();
    RequireFile();
    SaveTo(state_.fileName);
    return true;
}

bool LibraryCommands::SaveLibraryAs() {
    if (!MayBeSaved())
        return false;
    const auto fileName = ChooseLibraryToSave(window_);
    if (!fileName)
        return false;
    SaveTo(*fileName);
    return true;
}

void LibraryCommands::RequireFile() const {
    if (!state_.objAtlavex->FileName().empty() && !QFileInfo::exists(state_.fileName))
        throw ComponentError(
            ErrorNumber::FileChanged,
            "The file '" + state_.fileName.toStdString() +
                "' was removed by another program since it was opened. Use Save As to keep your "
                "version under this or another name.");
}

void LibraryCommands::SaveTo(const QString& fileName) {
    const int map = maps_.Entry();
    const int icon = icons_.Entry();
    StampLastChanged(*state_.objAtlavex);
    CompleteIdentifiers(*state_.objAtlavex);
    SaveWithAdvice(fileName);
    state_.modified = false;
    state_.fileName = fileName;
    lines_.SetTitle(fileName); // before what may still fail: it is saved
    SelectAgain(map, icon);
}

void LibraryCommands::SaveWithAdvice(const QString& fileName) {
    try {
        const ComponentCall call(window_);
        state_.objAtlavex->SaveToFile(fileName.toStdString(), state_.encryptionKey.toStdString());
    } catch (const ComponentError& error) {
        const bool isElsewhereTheWayOut =
            error.Number() == ErrorNumber::FileChanged || error.Number() == ErrorNumber::FileNotWritable;
        if (!isElsewhereTheWayOut || fileName != state_.fileName)
            throw;
        throw ComponentError(error.Number(),
                             error.Description() + " Use Save As to keep your version under another name.");
    }
}

void LibraryCommands::SelectAgain(int map, int icon) {
    if (map >= 0)
        maps_.Select(map);
    if (icon >= 0)
        icons_.Select(icon);
}

void LibraryCommands::MergeLibrary() {
    if (state_.objAtlavex == nullptr)
        return;
    const auto fileName = ChooseLibraryToMerge(window_);
    if (!fileName)
        return;
    const std::string file = fileName->toStdString();
    const auto key = AskForKey(state_.objAtlavex->IsEncrypted(file));
    if (!key)
        return;
    ListsBefore lists;
    {
        const ComponentCall call(window_);
        lists = {{maps_.Entries(), icons_.Entries()}, maps_.Entry(), icons_.Entry()};
        state_.objAtlavex->MergeFromFile(file, key->toStdString());
    }
    ReportMerge(lists);
}

void LibraryCommands::ReportMerge(const ListsBefore& lists) {
    const Counts& before = lists.counts;
    const Counts after = CountEntries();
    if (after == before) {
        ShowMessage(
            window_.Widget(),
            QStringLiteral(
                "No data was loaded/merged. Possibly the file is encrypted and your key was incorrect?"));
        return;
    }
    icons_.Refill(std::max(lists.icon, 0));
    const bool noneCurrent = state_.currentMap == nullptr;
    maps_.Refill(std::max(lists.map, 0));
    if (noneCurrent)
        status_.ShowStoredScaling();
    const auto added = [](std::int32_t now, std::int32_t then) {
        return QString::number(CheckedNarrow<std::int16_t>(now - then));
    };
    ShowMessage(window_.Widget(), QStringLiteral("Merge complete. \r\n") + added(after.maps, before.maps) +
                                      QStringLiteral(" map(s) added.\r\n") +
                                      added(after.icons, before.icons) + QStringLiteral(" icon(s) added."));
}
