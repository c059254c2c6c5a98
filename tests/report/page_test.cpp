// A run is put into the page at one place, and stays data whatever its texts hold.
#include "report/page.h"

#include <gtest/gtest.h>

namespace {

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::string const opening = "<script type=\"application/json\" id=\"run\">";

// What stands between the opening of the run's element and the next end of a script.
std::string runIn(std::string const& report) {
    std::size_t const begin = report.find(opening) + opening.size();
    return report.substr(begin, report.find("</script", begin) - begin);
}

}  // namespace

TEST(ReportPage, HoldsThePlaceForARunOnce) {
    EXPECT_EQ(countOf(reportPage(), "<!--RUN-->"), 1U);
    EXPECT_EQ(reportPage().substr(0, 15), "<!DOCTYPE html>");
}

TEST(ReportPage, NeedsNothingFromOutside) {
    EXPECT_EQ(countOf(reportPage(), " src="), 0U);
    EXPECT_EQ(countOf(reportPage(), "@import"), 0U);
    EXPECT_NE(reportPage().find("default-src 'none'"), std::string_view::npos);
}

TEST(ReportPage, HoldsTheLicencesOfItsLibraries) {
    EXPECT_NE(reportPage().find("Leon Sorokin"), std::string_view::npos);
    EXPECT_NE(reportPage().find("Chris Pettitt"), std::string_view::npos);
}

TEST(ReportPage, TakesTheRunInPlaceOfTheMarker) {
    std::string const report = reportOf("{\"a\":1}");
    EXPECT_EQ(countOf(report, "<!--RUN-->"), 0U);
    EXPECT_EQ(runIn(report), "{\"a\":1}");
    EXPECT_EQ(report.size(),
              reportPage().size() - 10 + opening.size() + 7 + std::string("</script>").size());
}

TEST(ReportPage, NoTextOfTheRunEndsItsElement) {
    std::string const report = reportOf("[\"</script><script>alert(1)</script><!--\",\"<\"]");
    EXPECT_EQ(runIn(report),
              "[\"\\u003c/script>\\u003cscript>alert(1)\\u003c/script>\\u003c!--\",\"\\u003c\"]");
    EXPECT_EQ(countOf(report, "</script"), countOf(reportPage(), "</script") + 1);
}

TEST(ReportPage, TakesAnEmptyRun) {
    EXPECT_EQ(runIn(reportOf("")), "");
}
