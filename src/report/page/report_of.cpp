// Puts the document of a run into the page.
#include <cassert>

#include "report/page.h"

namespace {

constexpr std::string_view marker = "<!--RUN-->";
constexpr std::string_view opening = "<script type=\"application/json\" id=\"run\">";
constexpr std::string_view closing = "</script>";

void appendInert(std::string& text, std::string_view json) {
    for (std::size_t done = 0; done < json.size();) {
        std::size_t const next = json.find('<', done);
        text.append(json.substr(done, next - done));
        if (next == std::string_view::npos)
            return;
        text.append("\\u003c");
        done = next + 1;
    }
}

}  // namespace

std::string reportOf(std::string_view json) {
    std::string_view const page = reportPage();
    std::size_t const place = page.find(marker);
    assert(place != std::string_view::npos);
    std::string report;
    report.reserve(page.size() + json.size() + json.size() / 16);
    report.append(page.substr(0, place)).append(opening);
    appendInert(report, json);
    return report.append(closing).append(page.substr(place + marker.size()));
}
