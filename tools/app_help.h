// How the command's help looks, and its longer texts.
#ifndef VOREL_TOOLS_APP_HELP_H_
#define VOREL_TOOLS_APP_HELP_H_

#include <CLI/CLI.hpp>
#include <string>

namespace tool {

// Options with their descriptions wrapped, and a usage line that shows what must be given.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter();
  std::string make_usage(const CLI::App* app, std::string name) const override;
  std::string make_option(const CLI::Option* option, bool is_positional) const override;
};

extern const char kMainDescription[];
extern const char kMainFooter[];

}  // namespace tool

#endif  // VOREL_TOOLS_APP_HELP_H_
