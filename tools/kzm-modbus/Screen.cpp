#include "Screen.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace kzm::ModbusTool {

namespace {

// Cursor and wrapping of long lines, off and on.
constexpr const char* ENTER = "\x1b[?25l\x1b[?7l\x1b[2J";
constexpr const char* LEAVE = "\x1b[?7h\x1b[?25h";
constexpr const char* HOME = "\x1b[H";
constexpr const char* CLEAR_LINE = "\x1b[K";
constexpr const char* CLEAR_REST = "\x1b[J";

std::size_t Height() {
    winsize size{};
    return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_row > 0 ? size.ws_row : 24;
}

}  // namespace

bool IsTerminal() {
    return isatty(STDOUT_FILENO) == 1;
}

bool UsesColour() {
    const char* noColour = std::getenv("NO_COLOR");
    return IsTerminal() && (!noColour || !*noColour);
}

Screen::Screen(std::string remedy) : mRemedy(std::move(remedy)) {
    std::cout << ENTER;
}

Screen::~Screen() {
    std::cout << LEAVE << std::flush;
}

void Screen::Show(std::vector<std::string> lines, const std::vector<std::string>& footer) {
    // The last line is left to the cursor, one to the note.
    const std::size_t room = std::max<std::size_t>(Height(), footer.size() + 4) - footer.size() - 1;
    if (lines.size() > room) {
        const std::size_t left = lines.size() - (room - 1);
        lines.resize(room - 1);
        lines.push_back("... " + std::to_string(left) + " more; " + mRemedy);
    }
    lines.insert(lines.end(), footer.begin(), footer.end());
    std::cout << HOME;
    for (const std::string& line : lines) {
        std::cout << line << CLEAR_LINE << '\n';
    }
    std::cout << CLEAR_REST << std::flush;
}

}  // namespace kzm::ModbusTool
