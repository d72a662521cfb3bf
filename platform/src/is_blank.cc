#include "zo_tv_support.h"

#include <cctype>

int IsBlank(const char* text)
{
    if (text == nullptr) {
        return 1;
    }
    for (; *text != '\0'; ++text) {
        if (!std::isspace(static_cast<unsigned char>(*text))) {
            return 0;
        }
    }
    return 1;
}
