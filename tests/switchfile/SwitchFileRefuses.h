// What tests of refused switch files share: each has one error in a file, and the whole message.
#pragma once

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <string_view>

#include "switchfile/SwitchFile.h"

namespace SwitchFile {

// The message is without the file's name. A text that starts with "{" or "[" is the whole file. Any
// other one is the end of a file that has VLANs 10 to 19, VRF blue, a router MAC, an access list
// "edge" and, unless the text itself has interfaces, those of `someInterfaces`.
struct RefusedFile {
    char const* name;
    char const* text;
    char const* message;
};

inline std::ostream& operator<<(std::ostream& out, RefusedFile const& wrong) {
    return out << wrong.text;
}

class SwitchFileRefuses : public testing::TestWithParam<RefusedFile> {
  protected:
    // What the whole file of `text` is refused with; "no error" if it is not.
    static std::string problem(std::string_view text) {
        try {
            parseSwitchFile(whole(std::string(text)), "f");
        } catch (InputError const& error) {
            return error.what();
        }
        return "no error";
    }

  private:
    static constexpr char const* someInterfaces =
        R"("interfaces": {"Ethernet1": {"port": 1, "access": 10}, "Ethernet2": {"port": 2},
                          "Lag1": {"members": ["Ethernet2"], "trunk": "10"},
                          "Vlan10": {"addresses": ["10.0.10.1/24"]},
                          "Vlan11": {"addresses": ["10.0.11.1/24", "2001:db8::1/64"]},
                          "Vlan12": {"addresses": ["10.0.12.1/24"], "vrf": "blue"}}, )";

    static std::string whole(std::string const& text) {
        if (text[0] == '{' || text[0] == '[') {
            return text;
        }
        std::string const begin =
            R"({"routerMac": "02:00:00:00:00:01", "vrfs": ["blue"],
                "vlans": {"10-19": {}}, "acls": {"edge": [{"action": "drop"}]}, )";
        bool const hasInterfaces = text.find("\"interfaces\"") != std::string::npos;
        return begin + (hasInterfaces ? "" : someInterfaces) + text + "}";
    }
};

inline std::string nameOf(testing::TestParamInfo<RefusedFile> const& info) {
    return info.param.name;
}

}  // namespace SwitchFile
