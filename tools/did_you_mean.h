// A suggestion for a word that is misspelt.
#ifndef VOREL_TOOLS_DID_YOU_MEAN_H_
#define VOREL_TOOLS_DID_YOU_MEAN_H_

#include <string>
#include <vector>

namespace tool {

// "; did you mean X?" with the known word that is nearest, or nothing when none is near enough to
// be meant (a third of the letters may be wrong, missing, added or exchanged).
[[nodiscard]] std::string did_you_mean(const std::string& word,
                                       const std::vector<std::string>& known);

}  // namespace tool

#endif  // VOREL_TOOLS_DID_YOU_MEAN_H_
