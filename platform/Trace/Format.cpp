#include "Trace/Format.h"

namespace Trace {

void appendFormatted(std::string& text, std::string_view format, std::span<Value const> values) {
    auto value = values.begin();
    for (auto place = format.find("%s"); place != format.npos; place = format.find("%s")) {
        text += format.substr(0, place);
        if (value != values.end()) {
            (value++)->appendTo(text);
        }
        format.remove_prefix(place + 2);
    }
    text += format;
    for (; value != values.end(); ++value) {
        text += ' ';
        value->appendTo(text);
    }
}

}  // namespace Trace
