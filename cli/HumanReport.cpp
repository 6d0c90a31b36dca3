#include "cli/HumanReport.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "cli/ChipWords.h"
#include "cli/Words.h"

namespace Cli {
namespace {

using Agent::Outcome;

constexpr std::string_view bold = "\033[1m";
constexpr std::string_view dim = "\033[2m";
constexpr std::string_view red = "\033[31m";
constexpr std::string_view green = "\033[32m";
constexpr std::string_view yellow = "\033[33m";
constexpr std::string_view cyan = "\033[36m";
constexpr std::string_view plain = "\033[0m";

std::string_view colourOf(Outcome outcome) {
    switch (outcome) {
        case Outcome::forwarded:
            return green;
        case Outcome::flooded:
            return cyan;
        case Outcome::dropped:
        case Outcome::noEgressPort:
            return yellow;
        case Outcome::refused:
        case Outcome::unknownIngress:
        case Outcome::noAnswer:
            return red;
    }
    return plain;
}

class Block {
  public:
    explicit Block(bool colour) : colour_(colour) {}

    void line(unsigned indent, std::string_view style, std::string_view text) {
        text_.append(indent, ' ');
        text_ += styled(style, text);
        text_ += '\n';
    }
    std::string styled(std::string_view style, std::string_view text) const {
        bool const styles = colour_ && !style.empty();
        return styles ? std::string(style) + std::string(text) + std::string(plain)
                      : std::string(text);
    }
    std::string take() { return std::move(text_); }

  private:
    bool const colour_;
    std::string text_;
};

std::string padded(std::string text, std::size_t width) {
    text.resize(std::max(text.size(), width), ' ');
    return text;
}

std::string nameOf(Plexa::IntfId const& intf) {
    return intf.empty() ? "-" : intf.stringValue();
}

void addEntries(Block& block, std::vector<PacketTracer::ResultEntry> const& entries) {
    static std::string const heading = "physical";
    std::size_t width = heading.size();
    for (auto const& entry : entries) {
        width = std::max(width, nameOf(entry.physicalIntf()).size());
    }
    if (!entries.empty()) {
        block.line(4, dim, padded(heading, width) + "  logical");
    }
    for (auto const& entry : entries) {
        block.line(
            4, {},
            padded(nameOf(entry.physicalIntf()), width) + "  " + nameOf(entry.logicalIntf()));
    }
}

void addDefaults(Block& block, std::vector<PacketTracer::NamedField> const& defaults) {
    std::string text;
    for (auto const& field : defaults) {
        text += (text.empty() ? "" : ", ") + std::string(field.name) + " " + field.value;
    }
    if (!text.empty()) {
        block.line(2, dim, "by default: " + text);
    }
}

void addDifference(Block& block, std::optional<Difference> const& difference) {
    if (difference && !difference->none()) {
        block.line(2, red, "not as expected: " + differenceWords(*difference));
    }
}

void addSteps(Block& block, std::vector<ChipStep> const& steps) {
    if (!steps.empty()) {
        block.line(2, bold, "the chip's steps");
    }
    for (ChipStep const& step : steps) {
        std::string const number = std::to_string(static_cast<unsigned>(step.step));
        std::string const detail = step.detail.empty() ? "" : " (" + step.detail + ")";
        std::string line = number + "  " + padded(std::string(words(step.step)), 20) + "  ";
        line += words(step.reason);
        block.line(4 + (number.size() == 1), {}, line + detail);
    }
}

std::string microseconds(std::chrono::nanoseconds time) {
    std::array<char, 32> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%9.1f us",
                  static_cast<double>(time.count()) / 1000);
    return buffer.data();
}

void addRoad(Block& block, std::vector<Passage> const& road) {
    if (!road.empty()) {
        block.line(2, bold, "the request's road");
    }
    for (Passage const& passage : road) {
        std::string const times =
            passage.times > 1 ? " (" + std::to_string(passage.times) + " times)" : "";
        block.line(4, {},
                   microseconds(passage.since) + "  " + padded(passage.handle, 13) + "  " +
                       passage.text + times);
    }
}

}  // namespace

std::string humanText(FrameReport const& report, bool colour) {
    Block block(colour);
    Packet const& packet = report.packet;
    block.line(0, bold,
               "Frame " + std::to_string(packet.number) + ", " +
                   std::to_string(packet.frame.size()) + " bytes: " + packet.text());
    addDefaults(block, packet.defaults);
    block.line(2, colourOf(report.answer.outcome), outcomeWords(report));
    addEntries(block, report.answer.egress);
    addDifference(block, report.difference);
    addSteps(block, report.steps);
    addRoad(block, report.road);
    return block.take();
}

}  // namespace Cli
