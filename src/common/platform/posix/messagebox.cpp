#include "common/platform/messagebox.h"

#include "common/platform/terminal.h"

#include <cctype>
#include <cstdio>

namespace ZUNO::Common::Platform {

namespace {

struct Answer {
    char mKey;
    int mButton;
};

struct Prompt {
    const char* mQuestion;
    Answer mAnswers[3];
};

Prompt promptOf(unsigned int style) {
    switch (style & 0xFU) {
    case BOX_OK_CANCEL:
        return {"[O]k [C]ancel: ", {{'o', BUTTON_OK}, {'c', BUTTON_CANCEL}, {}}};
    case BOX_YES_NO:
        return {"[Y]es [N]o: ", {{'y', BUTTON_YES}, {'n', BUTTON_NO}, {}}};
    case BOX_YES_NO_CANCEL:
        return {"[Y]es [N]o [C]ancel: ",
                {{'y', BUTTON_YES}, {'n', BUTTON_NO}, {'c', BUTTON_CANCEL}}};
    default:
        return {"[O]k: ", {{'o', BUTTON_OK}, {}, {}}};
    }
}

int closedBox(unsigned int style) {
    return (style & 0xFU) == BOX_OK ? BUTTON_OK : BUTTON_CANCEL;
}

/// The first letter of the next input line; 0 at the end of the input.
char readKey() {
    const int first = std::getchar();
    for (int skipped = first; skipped != EOF && skipped != '\n';)
        skipped = std::getchar();
    return first == EOF ? '\0' : static_cast<char>(std::tolower(first));
}

} // namespace

int showMessageBox(const char* text, const char* caption, unsigned int style) {
    if (!isTerminal(stdin)) {
        std::fprintf(stderr, "%s: %s\n", caption, text);
        return closedBox(style);
    }
    const Prompt prompt = promptOf(style);
    std::printf("%s\n%s\n", caption, text);
    for (;;) {
        std::fputs(prompt.mQuestion, stdout);
        std::fflush(stdout);
        const char key = readKey();
        if (key == '\0')
            return closedBox(style);
        for (const Answer& answer : prompt.mAnswers)
            if (answer.mKey == key)
                return answer.mButton;
    }
}

} // namespace ZUNO::Common::Platform
