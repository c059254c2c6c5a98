// Reading both forms of data.
#include "tavro/value_table.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <ctime>
#include <limits>
#include <optional>
#include <string_view>

#include "language/file_reader.h"
#include "language/messages.h"
#include "support/numbers.h"
#include "tavro/day.h"

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
constexpr char const* blanks = " \t\r";
// In a table whose cells are parted by tabs: at the ends of a line they part empty ones.
constexpr char const* blanksBesideTabs = " \r";

struct TextLine {
    std::size_t number;
    std::string_view text;
};

std::string_view trimmed(std::string_view text, char const* around = blanks) {
    std::size_t const first = text.find_first_not_of(around);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(around) - first + 1);
}

// Without comments, and without lines that hold nothing but what may stand *around* a text.
std::vector<TextLine> linesOf(std::string_view text, char const* around) {
    std::vector<TextLine> lines;
    std::size_t number = 0;
    while (!text.empty()) {
        std::size_t const end = std::min(text.find('\n'), text.size());
        std::string_view const line = trimmed(text.substr(0, text.find_first_of("#\n")), around);
        ++number;
        if (!line.empty())
            lines.push_back({number, line});
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string quoted(std::string_view text) {
    return std::string("\"").append(text).append("\"");
}

std::optional<double> numberOf(std::string_view text) {
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0.0;
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

bool isMissing(std::string_view text) {
    std::string word(text);
    std::transform(word.begin(), word.end(), word.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return word.empty() || word == "nan" || word == "na" || word == "null" || word == "-";
}

// Seconds since some moment, of 2026-11-22T09:30:00 or with a blank for the T. The time of day is
// taken as it stands, whatever zone follows it.
std::optional<double> dateOf(std::string_view text) {
    std::tm date{};
    std::string const copy(text);
    char const* end = strptime(copy.c_str(), "%Y-%m-%d", &date);
    if (end == nullptr)
        return std::nullopt;
    if (*end == 'T' || *end == ' ') {
        char const* const clock = end + 1;
        end = strptime(clock, "%H:%M:%S", &date);
        if (end == nullptr)
            end = strptime(clock, "%H:%M", &date);
        if (end == nullptr)
            return std::nullopt;
    }
    double fraction = 0.0;
    if (*end == '.') {
        char* after = nullptr;
        fraction = std::strtod(end, &after);
        end = after;
    }
    std::string_view const zone = end;
    if (!zone.empty() && zone != "Z" && zone.front() != '+' && zone.front() != '-')
        return std::nullopt;
    return static_cast<double>(timegm(&date)) + fraction;
}

// What `tavro simulate` tells beside what is measured.
bool isTruth(std::string const& name) {
    return name.starts_with("true ");
}

class Reader {
public:
    Reader(std::string const& path, double period) : path(path), period(period) {}

    ValueTable read(std::vector<std::string> const& plainNames,
                    std::vector<std::string> const& wanted) {
        FileReader reader;
        std::optional<std::string> const text = reader.read(path);
        if (!text)
            throw DataRefused("can't read file " + path);
        std::vector<TextLine> const lines = linesOf(*text, blanks);
        if (lines.empty())
            throw DataRefused(path + " holds no data");
        if (!isHeading(lines.front().text)) {
            readPlain(lines, plainNames);
            return std::move(table);
        }
        chooseSeparator(lines.front().text);
        readCsv(separator == '\t' ? linesOf(*text, blanksBesideTabs) : lines, wanted);
        return std::move(table);
    }

private:
    [[noreturn]] void refuse(TextLine const& line, std::string const& what) const {
        throw DataRefused(path + ":" + std::to_string(line.number) + ": " + what);
    }
    void note(std::string const& text) { table.notes.push_back(path + text); }
    void note(TextLine const& line, std::string const& text) {
        table.notes.push_back(path + ":" + std::to_string(line.number) + ": " + text);
    }

    // A heading begins with a name, behind columns that have none; a line of numbers with a number
    // or a missing one.
    static bool isHeading(std::string_view line) {
        constexpr char const* between = " \t,;";
        line.remove_prefix(std::min(line.find_first_not_of(between), line.size()));
        std::string_view const first = line.substr(0, line.find_first_of(between));
        return !numberOf(first) && !isMissing(first) && !dateOf(first);
    }

    // ---- Numbers with blanks between ----

    void readPlain(std::vector<TextLine> const& lines, std::vector<std::string> const& names) {
        for (TextLine const& line : lines) {
            std::vector<double> const values = plainValues(line);
            if (values.size() < names.size())
                refuse(line, std::to_string(values.size()) + " of " + std::to_string(names.size()) +
                                 " numbers are there: " + oneOf(names));
            if (values.size() > names.size())
                noteMore(line, values.size(), names.size());
            for (std::size_t i = 0; i < names.size(); ++i)
                table.columns[names[i]].push_back(values[i]);
            ++table.rows;
        }
    }
    std::vector<double> plainValues(TextLine const& line) const {
        std::vector<double> values;
        std::string_view rest = line.text;
        while (!rest.empty()) {
            std::string_view const word = rest.substr(0, rest.find_first_of(blanks));
            std::optional<double> const value = numberOf(word);
            if (!value && !isMissing(word))
                refuse(line, quoted(word).append(" is no number") + adviceOn(word));
            values.push_back(value && std::isfinite(*value) ? *value : missing);
            rest.remove_prefix(word.size());
            rest = trimmed(rest);
        }
        return values;
    }
    static std::string adviceOn(std::string_view word) {
        if (word.find(',') != std::string_view::npos)
            return ": decimals stand behind a point; a table with commas needs a heading that "
                   "names its columns";
        return "";
    }
    void noteMore(TextLine const& line, std::size_t there, std::size_t used) {
        if (toldMore)
            return;
        toldMore = true;
        note(line, std::to_string(there) + " numbers, of which the first " + std::to_string(used) +
                       " are used, here and below");
    }

    // ---- Tables with a heading ----

    struct Cells {
        std::vector<std::string> texts;
        bool whole = true;  // quotes are closed
    };
    Cells cellsOf(std::string_view line) const {
        Cells cells;
        std::string cell;
        bool quoted = false;
        for (std::size_t i = 0; i < line.size(); ++i) {
            char const c = line[i];
            if (c == '"' && quoted && i + 1 < line.size() && line[i + 1] == '"')
                cell += line[++i];
            else if (c == '"')
                quoted = !quoted;
            else if (c == separator && !quoted) {
                cells.texts.emplace_back(trimmed(cell));
                cell.clear();
            } else
                cell += c;
        }
        cells.texts.emplace_back(trimmed(cell));
        cells.whole = !quoted;
        return cells;
    }
    void chooseSeparator(std::string_view heading) {
        for (char const candidate : {';', '\t', ','})
            if (heading.find(candidate) != std::string_view::npos) {
                separator = candidate;
                return;
            }
    }

    void readCsv(std::vector<TextLine> const& lines, std::vector<std::string> const& wanted) {
        readHeading(lines.front(), wanted);
        for (std::size_t i = 1; i < lines.size(); ++i)
            readRow(lines[i]);
        if (table.rows == 0)
            throw DataRefused(path + " has a heading and no rows");
    }
    void readHeading(TextLine const& line, std::vector<std::string> const& wanted) {
        std::vector<std::string> skipped;
        for (std::string const& name : cellsOf(line.text).texts) {
            bool const isUsed = std::find(wanted.begin(), wanted.end(), name) != wanted.end();
            if (isUsed && !table.columns.try_emplace(name).second)
                refuse(line, "there are two columns " + name);
            if (!isUsed && name != "time" && name != "step" && !isTruth(name) && !name.empty())
                skipped.push_back(name);
            heading.push_back(name);
        }
        auto const has = [this](char const* name) {
            return std::find(heading.begin(), heading.end(), name) != heading.end();
        };
        timeColumn = has("time") ? "time" : has("step") ? "step" : "";
        table.hasTime = !timeColumn.empty();
        if (table.columns.empty())
            refuse(line, "no column has a name that is looked for: " + oneOf(wanted));
        if (!skipped.empty())
            note(": skipped, for nothing of that name is looked for: " + listed(skipped));
    }
    static std::string listed(std::vector<std::string> const& names) {
        constexpr std::size_t most = 8;
        std::string text;
        for (std::size_t i = 0; i < std::min(names.size(), most); ++i)
            text.append(i == 0 ? "" : ", ").append(names[i]);
        if (names.size() > most)
            text.append(" and ").append(std::to_string(names.size() - most)).append(" more");
        return text;
    }
    void readRow(TextLine const& line) {
        Cells const cells = cellsOf(line.text);
        if (!cells.whole)
            refuse(line, "a quote is not closed");
        if (cells.texts.size() != heading.size())
            refuse(line, std::to_string(cells.texts.size()) + " cells under a heading of " +
                             std::to_string(heading.size()));
        std::optional<double> time;
        for (std::size_t i = 0; i < heading.size(); ++i)
            if (heading[i] == timeColumn && !timeColumn.empty())
                time = timeOf(line, cells.texts[i]);
        if (time)
            placeRow(line, *time);
        for (std::size_t i = 0; i < heading.size(); ++i)
            if (auto const column = table.columns.find(heading[i]);
                column != table.columns.end() && heading[i] != timeColumn)
                column->second.push_back(valueOf(line, heading[i], cells.texts[i]));
        ++table.rows;
    }
    // Between semicolons a comma can only be that of a decimal.
    double valueOf(TextLine const& line, std::string const& name, std::string text) {
        if (isMissing(text))
            return missing;
        if (separator == ';')
            std::replace(text.begin(), text.end(), ',', '.');
        std::optional<double> const value = numberOf(text);
        if (!value)
            refuse(line,
                   quoted(text).append(" in the column ").append(name).append(" is no number"));
        return std::isfinite(*value) ? *value : missing;
    }

    // ---- Times ----

    double timeOf(TextLine const& line, std::string text) const {
        if (separator == ';')
            std::replace(text.begin(), text.end(), ',', '.');
        if (std::optional<double> const value = numberOf(text); value && std::isfinite(*value))
            return *value * (timeColumn == "step" ? period : 1.0);
        if (std::optional<double> const date = dateOf(text))
            return *date;
        refuse(line, quoted(text) + " is neither a number of seconds nor a date as " +
                         "2026-11-22T09:30:00");
    }
    // Rows for the steps that were left out. A time may be off by a tenth of a period.
    void placeRow(TextLine const& line, double time) {
        if (table.rows == 0) {
            firstTime = time;
            return;
        }
        double const steps = (time - firstTime) / period;
        double const step = std::round(steps);
        if (std::fabs(steps - step) > 0.1)
            refuse(line, "the time " + shortText(time) + " lies between two steps: the plant's " +
                             "sample period is " + shortText(period) + " s");
        if (step < static_cast<double>(table.rows))
            refuse(line, "the time " + shortText(time) + " does not come after the one before");
        constexpr double mostSteps = 1e7;
        if (step > mostSteps)
            refuse(line, "the time " + shortText(time) + " lies more than ten million steps away");
        if (step > static_cast<double>(table.rows) && !toldGap) {
            toldGap = true;
            note(line,
                 "steps are left out before this row; they are taken as missing, here and below");
        }
        while (static_cast<double>(table.rows) < step) {
            for (auto& column : table.columns)
                column.second.push_back(missing);
            ++table.rows;
        }
    }

    std::string const& path;
    double const period;
    char separator = ',';
    std::vector<std::string> heading;
    std::string timeColumn;  // "" for none
    double firstTime = 0.0;
    bool toldMore = false, toldGap = false;
    ValueTable table;
};

}  // namespace

ValueTable readTable(std::string const& path, std::vector<std::string> const& plainNames,
                     std::vector<std::string> const& wanted, double period) {
    return Reader(path, period).read(plainNames, wanted);
}
