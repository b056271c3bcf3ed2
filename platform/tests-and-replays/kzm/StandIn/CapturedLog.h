#pragma once

#include <string>
#include <vector>

#include "kzm/Log/RootLogger.h"

namespace kzm::StandIn {

struct LogLine {
    Log::OrbaLogLevel level;
    // Without the thread id ("[%lu]" in front), so that lines can be compared.
    std::string text;
};

// Captures the log lines of this process up to a level, as long as this object lives. For tests. Read the lines only
// while no other thread logs.
class CapturedLog {
public:
    explicit CapturedLog(Log::OrbaLogLevel level = Log::OrbaLogLevel::TRACE)
        : mEarlierLevel(Log::RootLogger::GetInstance().GetLevel()) {
        Log::RootLogger::GetInstance().SetSink([this](Log::OrbaLogLevel lineLevel, const char* line) {
            const std::string text(line);
            mLines.push_back({lineLevel, text.substr(text.find(']') + 1)});
        });
        Log::RootLogger::GetInstance().SetLevel(level);
    }
    ~CapturedLog() {
        Log::RootLogger::GetInstance().SetLevel(mEarlierLevel);
        Log::RootLogger::GetInstance().SetSink({});
    }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    const std::vector<LogLine>& Lines() const { return mLines; }
    void Clear() { mLines.clear(); }

    // The texts of the lines of one level, in order.
    std::vector<std::string> Texts(Log::OrbaLogLevel level) const {
        std::vector<std::string> texts;
        for (const LogLine& line : mLines) {
            if (line.level == level) {
                texts.push_back(line.text);
            }
        }
        return texts;
    }

    // The same as one text, each line on a new one.
    std::string Joined(Log::OrbaLogLevel level) const {
        std::string text;
        for (const std::string& line : Texts(level)) {
            text += '\n' + line;
        }
        return text;
    }

    // All lines as one text, each on a new line behind the number of its level.
    std::string Joined() const {
        std::string text;
        for (const LogLine& line : mLines) {
            text += '\n' + std::to_string(static_cast<int>(line.level)) + line.text;
        }
        return text;
    }

private:
    Log::OrbaLogLevel mEarlierLevel;
    std::vector<LogLine> mLines;
};

}  // namespace kzm::StandIn
