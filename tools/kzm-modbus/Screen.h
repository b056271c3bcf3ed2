#pragma once

#include <string>
#include <vector>

namespace kzm::ModbusTool {

// Whether standard output is a terminal.
bool IsTerminal();

// Whether standard output may be coloured: a terminal, and the environment does not set NO_COLOR.
bool UsesColour();

// Redraws lines in the same place of the terminal; hides the cursor meanwhile.
class Screen {
public:
    // `remedy`: how lines that there is no room for are seen.
    explicit Screen(std::string remedy = "--object shows single ones");
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // Shows all of `footer`, and as many of `lines` as there is room for, with the number of those left out.
    void Show(std::vector<std::string> lines, const std::vector<std::string>& footer);

private:
    std::string mRemedy;
};

}  // namespace kzm::ModbusTool
