#pragma once

#include <string>
#include <vector>

namespace kzm::ModbusTool {

// Whether standard output is a terminal.
bool IsTerminal();

// Whether standard output may be coloured: a terminal, and the environment does not say NO_COLOR.
bool UsesColour();

// Shows lines at the same place of the terminal again and again; hides the cursor meanwhile.
class Screen {
public:
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    // `footer` is always seen; of `lines` as many as there is room for, and how many were left out.
    void Show(std::vector<std::string> lines, const std::vector<std::string>& footer);
};

}  // namespace kzm::ModbusTool
