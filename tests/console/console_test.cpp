// The line reader, the command table, the help and the loop's treatment of one line.
#include "console/console.h"

#include <cstdio>

// Needs FILE to be declared.
#include <readline/history.h>
#include <readline/readline.h>

#include <cstring>
#include <ctime>

#include "console/completion.h"
#include "console/run.h"
#include "console_fixture.h"

namespace {

std::string stripped(std::string text) {
    stripWhite(text.data());
    return text.c_str();
}

TEST(StripWhite, RemovesWhiteSpaceAtBothEnds) {
    EXPECT_EQ(stripped("word"), "word");
    EXPECT_EQ(stripped("  word"), "word");
    EXPECT_EQ(stripped("word  "), "word");
    EXPECT_EQ(stripped(" \t\n\v\f\r word \t\n\v\f\r "), "word");
    EXPECT_EQ(stripped("  two  words "), "two  words") << "what stands between stays";
    EXPECT_EQ(stripped(" x "), "x");
}

TEST(StripWhite, WhiteSpaceAloneGoesFromTheFront) {
    EXPECT_EQ(stripped(""), "");
    EXPECT_EQ(stripped(" "), "");
    EXPECT_EQ(stripped(" \t "), "");
}

TEST(StripWhite, BytesAboveSevenBitsAreNoWhiteSpace) {
    EXPECT_EQ(stripped("\xa0x\x85"), "\xa0x\x85");
}

TEST(StripWhite, ANullTextIsNone) {
    stripWhite(nullptr);
}

int first(char const*) {
    return 1;
}

int second(char const*) {
    return 2;
}

snCom const twins[] = {{"one", first, "first"},
                       {"two", first, "other"},
                       {"one", second, "second"},
                       {nullptr, nullptr, nullptr}};

TEST(WhichCom, AnswersTheLastOfEqualNames) {
    ASSERT_NE(whichCom(twins, "one"), nullptr);
    EXPECT_EQ(whichCom(twins, "one")->func(nullptr), 2);
    EXPECT_STREQ(whichCom(twins, "two")->doc, "other");
}

TEST(WhichCom, WantsTheWholeName) {
    EXPECT_EQ(whichCom(cde, ""), nullptr);
    EXPECT_EQ(whichCom(cde, "ini"), nullptr);
    EXPECT_EQ(whichCom(cde, "inits"), nullptr);
    EXPECT_EQ(whichCom(cde, "INIT"), nullptr);
    EXPECT_EQ(whichCom(cde, "diagnosis"), nullptr);
    ASSERT_NE(whichCom(cde, "init"), nullptr);
    EXPECT_EQ(whichCom(cde, "init")->func, snInit);
}

struct Row {
    char const* name;
    CommandHandler func;
    char const* doc;
};

void expectTable(snCom const* table, std::vector<Row> const& rows) {
    for (Row const& row : rows) {
        ASSERT_NE(table->name, nullptr) << row.name << " is missing";
        EXPECT_STREQ(table->name, row.name);
        EXPECT_EQ(table->func, row.func) << row.name;
        EXPECT_STREQ(table->doc, row.doc);
        ++table;
    }
    EXPECT_EQ(table->name, nullptr);
}

TEST(CommandTable, HoldsTheCommandsInTheirOrder) {
    expectTable(cde, {{"quit", snQuit, "Quit exec"},
                      {"q", snQuit, "Shortcut to quit"},
                      {"help", snHelp, "Get Help"},
                      {"#", snComment, "Comment line"},
                      {"detect", snDetect, "Prediction and default detection"},
                      {"gnuplot", snGnup, "Display results"},
                      {"gp", snGnup, "Shortcut to gnuplot"},
                      {"init", snInit, "Run initializations"},
                      {"print", snPrint, "Print data structures"},
                      {"p", snPrint, "Shortcut to print"},
                      {"simul", snSimul, "Simulation"},
                      {"disc", snDisc, "Run discrete only models"},
                      {"system", snSystem, "Issue a shell command"},
                      {"debug", snDebug, "Debug mode"}});
}

TEST(DebugTable, HoldsCommandsThatDoNothing) {
    expectTable(dde, {{"exit", deExit, "Return to normal mode"},
                      {"x", deExit, "Shortcut to exit"},
                      {"help", deHelp, "Get Help"},
                      {"print", dePrint, "Print data structures"},
                      {"p", dePrint, "Shortcut to print"}});
    for (snCom const* record = dde; record->name != nullptr; ++record) {
        Streams const said = streamsOf([&] { EXPECT_EQ(record->func("word"), 1); });
        EXPECT_EQ(said.out + said.err, "") << record->name;
    }
}

std::string helpOn(char const* arg) {
    Streams const said = streamsOf([arg] { printHelp(arg); });
    EXPECT_EQ(said.out, "");
    return said.err;
}

TEST(PrintHelp, ListsAllWithoutAnArgument) {
    std::string const all = helpOn(nullptr);
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 14);
    EXPECT_EQ(all.find("quit        Quit exec.\nq           Shortcut to quit.\n"), 0u);
    EXPECT_EQ(helpOn(""), all);
}

TEST(PrintHelp, ListsThoseThatBeginWithTheArgument) {
    EXPECT_EQ(helpOn("in"), "init        Run initializations.\n");
    EXPECT_EQ(helpOn("gp"), "gp          Shortcut to gnuplot.\n");
    EXPECT_EQ(helpOn("s"), "simul       Simulation.\nsystem      Issue a shell command.\n");
}

TEST(PrintHelp, NamesAllWhenNoneMatches) {
    std::string const all =
        "quit        q           help        #           detect      gnuplot     \n"
        "gp          init        print       p           simul       disc        \n"
        "system      debug       \n";
    EXPECT_EQ(helpOn("nit"), "No commands match `nit'.  Possibilities are:\n" + all);
    EXPECT_EQ(helpOn("initx"), "No commands match `initx'.  Possibilities are:\n" + all);
    EXPECT_EQ(helpOn(" "), "No commands match ` '.  Possibilities are:\n" + all);
}

TEST(SmallHandlers, AnswerTheirCodes) {
    done = 0;
    EXPECT_EQ(snQuit("now"), 0);
    EXPECT_EQ(done, 1);
    done = 0;
    EXPECT_EQ(snComment("anything"), 1);
    Streams const said = streamsOf([] { EXPECT_EQ(snHelp("q"), 0); });
    EXPECT_EQ(said.err, "quit        Quit exec.\nq           Shortcut to quit.\n");
}

// What the loop makes of a line.
std::string obey(std::string line) {
    Streams const said = streamsOf([&line] { obeyLine(line.data()); });
    EXPECT_EQ(said.out, "");
    return said.err;
}

TEST(ObeyLine, GivesTheStrippedRestToTheCommand) {
    std::string const quits = "quit        Quit exec.\nq           Shortcut to quit.\n";
    EXPECT_EQ(obey("help q"), quits);
    EXPECT_EQ(obey("  help    q  "), quits);
    EXPECT_EQ(obey("help \tq\t"), quits);
    EXPECT_EQ(obey("help in it").rfind("No commands match `in it'.", 0), 0u);
}

TEST(ObeyLine, ReportsAnUnknownWord) {
    EXPECT_EQ(obey("hello to you"), "hello: Unknown Tavro executer subcommand.\n");
    EXPECT_EQ(obey("help\tq"), "help\tq: Unknown Tavro executer subcommand.\n");
    EXPECT_EQ(obey(" #joined"), "#joined: Unknown Tavro executer subcommand.\n");
    EXPECT_EQ(obey(" \t "), ": Unknown Tavro executer subcommand.\n");
}

TEST(ObeyLine, TakesACommentMarkThatStandsAlone) {
    EXPECT_EQ(obey(" # quit"), "");
    EXPECT_EQ(done, 0);
}

// The line reader on a text in place of standard input, with its own output thrown away.
class ReaderTest : public testing::Test {
protected:
    void type(std::string const& text) {
        input = std::tmpfile();
        std::fputs(text.c_str(), input);
        std::rewind(input);
        output = std::fopen("/dev/null", "w");
        rl_instream = input;
        rl_outstream = output;
        clear_history();
    }
    void TearDown() override {
        std::fclose(input);
        std::fclose(output);
        rl_instream = nullptr;
        rl_outstream = nullptr;
    }
    static std::string history() {
        std::string entries;
        for (int i = 0; i < history_length; ++i)
            entries += std::string(history_get(history_base + i)->line) + "|";
        return entries;
    }

    std::FILE *input = nullptr, *output = nullptr;
};

TEST_F(ReaderTest, KeepsTheLineUntilTheNext) {
    type("one\ntwo\n");
    ligneInit();
    EXPECT_STREQ(ligne, "") << "the first line is an empty one";
    EXPECT_STREQ(do_gets(""), "one");
    EXPECT_STREQ(ligne, "one");
    EXPECT_STREQ(do_gets(""), "two");
    EXPECT_STREQ(ligne, "two");
}

TEST_F(ReaderTest, TheHistoryTakesRawLinesThatAreNotEmpty) {
    type("  init  \n\n# comment\nlast");
    while (do_gets("") != nullptr) {
    }
    EXPECT_EQ(history(), "  init  |# comment|last|");
}

TEST_F(ReaderTest, AtTheEndItAnswersNullAndPauses) {
    type("");
    timespec before{}, after{};
    clock_gettime(CLOCK_MONOTONIC, &before);
    EXPECT_EQ(do_gets(""), nullptr);
    clock_gettime(CLOCK_MONOTONIC, &after);
    EXPECT_EQ(ligne, nullptr);
    double const seconds = static_cast<double>(after.tv_sec - before.tv_sec) +
                           1e-9 * static_cast<double>(after.tv_nsec - before.tv_nsec);
    EXPECT_GE(seconds, 0.1);
    EXPECT_EQ(do_gets(""), nullptr) << "and so on";
}

TEST_F(ReaderTest, RunsUntilQuit) {
    type("help gp\n\n# quit\nhello\nquit\nhelp\n");
    done = 0;
    Streams const said = streamsOf([] { runConsole(); });
    done = 0;
    EXPECT_EQ(said.err,
              "help gp\ngp          Shortcut to gnuplot.\n# quit\n"
              "hello\nhello: Unknown Tavro executer subcommand.\nquit\n");
}

TEST(Completion, IsNamedAndAnswersNothing) {
    char const* const name = rl_readline_name;
    initialize_readline();
    EXPECT_STREQ(rl_readline_name, "Tavro");
    rl_readline_name = name;
    EXPECT_EQ(sn_completion("in", 0, 2), nullptr);
    EXPECT_EQ(rl_attempted_completion_function, nullptr) << "it is not installed";
}

// In a process of its own: before the first start the walk stands at the first command, and the
// empty text is met by all, so the last one is the answer.
TEST(CompletionDeath, TheGeneratorAnswersBeforeItsFirstStart) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(
        {
            char const* found = command_generator("", 1);
            std::exit(found != nullptr && std::string(found) == "debug" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(Completion, TheGeneratorAnswersTheLastMatchAndThenNone) {
    EXPECT_STREQ(command_generator("d", 0), "debug");
    EXPECT_EQ(command_generator("d", 1), nullptr);
    EXPECT_EQ(command_generator("d", 1), nullptr);
    EXPECT_STREQ(command_generator("gp", 0), "gp");
    EXPECT_STREQ(command_generator("", 0), "debug");
    EXPECT_EQ(command_generator("nit", 0), nullptr);
    EXPECT_EQ(command_generator("init", 0), whichCom(cde, "init")->name) << "no copy is made";
}

}  // namespace
