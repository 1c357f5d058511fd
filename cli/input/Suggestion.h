#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What somebody may have meant who typed a text that is none of these: "; did you mean 'info'?", to stand
/// behind a sentence in the place of its end; only "." when nothing is near. Letters count alike in either
/// case, and two that changed places as one mistake.
std::string DidYouMean(std::string_view typed, const std::vector<std::string>& known);
