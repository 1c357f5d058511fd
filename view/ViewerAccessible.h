#pragma once

/// Lets assistive programs see a KarvelViewer as a picture whose value is the viewer's ValueText. May be
/// called any number of times.
void MakeViewersAccessible();
