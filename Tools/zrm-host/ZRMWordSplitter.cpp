#include "Tools/zrm-host/ZRMWordSplitter.h"

namespace {

bool isBlank(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\r';
}

// Reads the line from left to right. The reading functions tell whether what they began was ended.
class Splitter {
  public:
    explicit Splitter(std::string_view line) : rest_(line) {}

    std::optional<std::vector<std::string>> split() {
        while (skipBlanks()) {
            if (!readWord()) {
                return std::nullopt;
            }
            words_.push_back(std::move(word_));
            word_.clear();
        }
        return std::move(words_);
    }

  private:
    char take() {
        const char letter = rest_.front();
        rest_.remove_prefix(1);
        return letter;
    }

    bool skipBlanks() {
        while (!rest_.empty() && isBlank(rest_.front())) {
            take();
        }
        return !rest_.empty();
    }

    bool readWord() {
        while (!rest_.empty() && !isBlank(rest_.front())) {
            const char letter = take();
            bool ended = true;
            if (letter == '\'') {
                ended = readSingleQuoted();
            } else if (letter == '"') {
                ended = readDoubleQuoted();
            } else if (letter == '\\') {
                ended = readEscaped();
            } else {
                word_.push_back(letter);
            }
            if (!ended) {
                return false;
            }
        }
        return true;
    }

    bool readSingleQuoted() {
        const auto end = rest_.find('\'');
        if (end == std::string_view::npos) {
            return false;
        }
        word_ += rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        return true;
    }

    bool readDoubleQuoted() {
        while (!rest_.empty()) {
            const char letter = take();
            if (letter == '"') {
                return true;
            }
            const bool escapes =
                letter == '\\' && !rest_.empty() &&
                std::string_view("\"\\$`").find(rest_.front()) != std::string_view::npos;
            word_.push_back(escapes ? take() : letter);
        }
        return false;
    }

    bool readEscaped() {
        if (rest_.empty()) {
            return false;
        }
        word_.push_back(take());
        return true;
    }

    std::string_view rest_;
    std::string word_;
    std::vector<std::string> words_;
};

}  // namespace

std::optional<std::vector<std::string>> zrm_splitWords(std::string_view line) {
    return Splitter(line).split();
}
