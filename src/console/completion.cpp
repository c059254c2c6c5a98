#include "console/completion.h"

#include <cstdio>
#include <cstring>

// Needs FILE to be declared.
#include <readline/readline.h>

#include "console/console.h"

void initialize_readline() {
    rl_readline_name = "Tavro";
}

char** sn_completion(char const*, int, int) {
    return nullptr;
}

char const* command_generator(char const* text, int state) {
    static snCom const* record = cde;
    static std::size_t length;
    if (state == 0) {
        record = cde;
        length = std::strlen(text);
    }
    char const* found = nullptr;
    for (; record->name != nullptr; ++record)
        if (std::strncmp(record->name, text, length) == 0)
            found = record->name;
    return found;
}
