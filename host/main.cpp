#include <unistd.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "foundation/util/NCProgress.h"
#include "foundation/util/UserMessage.h"
#include "host/Cli.h"
#include "host/Interrupt.h"
#include "host/ProgressBar.h"

int main(int argc, char** argv) {
    Interrupt::Install();
    NCProgress::SetDisplay(std::make_shared<ProgressBar>(
        std::cerr, ::isatty(STDERR_FILENO) == 1, Interrupt::IsRequested));
    UserMessage::SetErrorReporter([](const std::string& text) { std::cerr << text << '\n'; });
    const int code = RunCommandLine({argv + 1, argv + argc}, std::cout, std::cerr);
    UserMessage::SetErrorReporter({});
    NCProgress::SetDisplay(nullptr);
    return code;
}
