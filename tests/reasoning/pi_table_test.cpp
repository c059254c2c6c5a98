// The table of prime implicates, its text, and its file.
#include "reasoning/pi_table.h"
#include "fixtures/the_run.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "reasoning/reasoning_fixture.h"

using reasoning_fixture::complaint;
using reasoning_fixture::SmallModel;

namespace {

class PiTableTest : public testing::Test {
protected:
    PiTableTest() : folder(testing::TempDir() + "pi_table_" + std::to_string(getpid())) {
        std::filesystem::create_directories(folder);
        thePlant().name = folder + "/plant";
        model.comps.at("c")->symbol = "c";
        model.propositions("a b d e");
        model.clause("a b d e");
        model.start();
    }
    ~PiTableTest() override { std::filesystem::remove_all(folder); }

    std::string path() const { return folder + "/plant.pi"; }
    void write(std::string const& text) { std::ofstream(path(), std::ios::binary) << text; }
    std::string written() {
        std::ostringstream text;
        text << std::ifstream(path()).rdbuf();
        return text.str();
    }
    // Reads the file with that text.
    int read(std::string const& text) {
        write(text);
        return model.engine.readPI();
    }
    // The list of an atom: "bd,e", or "-" for none.
    std::string implicates(char const* name) {
        Implicates const* list = model.engine.piTable->getPIs(model.atom(name));
        if (list == nullptr)
            return "-";
        std::string text;
        for (Implicate const& implicate : *list) {
            text += text.empty() ? "" : ",";
            for (Atom const* atom : implicate)
                text += atom->id.substr(2, 1);
        }
        return text;
    }
    Atom* operator[](char const* name) { return model.atom(name); }

    std::string const folder;
    SmallModel model;
    PiTable table;
};

TEST_F(PiTableTest, AnAbsentAtomHasNoListAndGetsNone) {
    EXPECT_EQ(table.getPIs((*this)["a"]), nullptr);
    table.showAllPI(std::cout);
    EXPECT_EQ(model.trace.take(), "");
    table.addPIAtom((*this)["a"], {});
    ASSERT_NE(table.getPIs((*this)["a"]), nullptr);
    EXPECT_TRUE(table.getPIs((*this)["a"])->empty());
}

TEST_F(PiTableTest, ANewListReplacesTheOldOne) {
    table.addPIAtom((*this)["a"], {{(*this)["b"]}});
    table.addPIAtom((*this)["a"], {{(*this)["d"], (*this)["e"]}, {(*this)["b"]}});
    Implicates const expected = {{(*this)["d"], (*this)["e"]}, {(*this)["b"]}};
    EXPECT_EQ(*table.getPIs((*this)["a"]), expected);
}

TEST_F(PiTableTest, ShowsTheAlternativesUnderOneAnother) {
    table.addPIAtom((*this)["a"], {{(*this)["b"], (*this)["d"]}, {(*this)["e"]}});
    table.showPI(std::cout, (*this)["a"]);
    EXPECT_EQ(model.trace.take(), "\nPI(c.a=on) => c.b=on - c.d=on - \n\t\t=>c.e=on - ");
    table.showPI(std::cout, (*this)["b"]);
    EXPECT_EQ(model.trace.take(), "");
}

TEST_F(PiTableTest, ShowsAll) {
    table.addPIAtom((*this)["a"], {{(*this)["b"]}});
    table.addPIAtom((*this)["d"], {{(*this)["e"]}});
    table.showAllPI(std::cout);
    std::string const text = model.trace.take();
    EXPECT_NE(text.find("\nPI(c.a=on) => c.b=on - "), std::string::npos);
    EXPECT_NE(text.find("\nPI(c.d=on) => c.e=on - "), std::string::npos);
}

TEST_F(PiTableTest, WritesALineForEachAtom) {
    table.addPIAtom((*this)["a"], {{(*this)["b"], (*this)["d"]}, {(*this)["e"]}});
    table.writePI(runHost(), (folder + "/plant").c_str());
    EXPECT_EQ(model.trace.take(), "writing file " + path() + "\n");
    EXPECT_EQ(written(), "c.a=on:c.b=on c.d=on,c.e=on\n");
}

TEST_F(PiTableTest, WritingTruncatesTheOldFile) {
    // Not the plant's own, which may have been read, and what is read is not overwritten.
    std::ofstream(folder + "/other.pi") << "much longer than what will stand there\n";
    table.addPIAtom((*this)["a"], {{(*this)["b"]}});
    table.writePI(runHost(), (folder + "/other").c_str());
    std::ostringstream text;
    text << std::ifstream(folder + "/other.pi").rdbuf();
    EXPECT_EQ(text.str(), "c.a=on:c.b=on\n");
}

TEST_F(PiTableTest, WritingWhereNothingCanBeWrittenIsTold) {
    table.addPIAtom((*this)["a"], {{(*this)["b"]}});
    EXPECT_EQ(complaint([&] { table.writePI(runHost(), (folder + "/none/plant").c_str()); }),
              "Can't write file " + folder + "/none/plant.pi: No such file or directory\n");
}

TEST_F(PiTableTest, WhatWasWrittenIsReadBack) {
    table.addPIAtom((*this)["a"], {{(*this)["b"], (*this)["d"]}, {(*this)["e"]}});
    table.addPIAtom((*this)["b"], {{(*this)["a"]}});
    table.addPIAtom((*this)["e"], {{(*this)["e"], (*this)["a"], (*this)["a"]}});
    table.writePI(runHost(), (folder + "/plant").c_str());
    ASSERT_EQ(model.engine.readPI(), 1);
    EXPECT_EQ(implicates("a"), "bd,e");
    EXPECT_EQ(implicates("b"), "a");
    EXPECT_EQ(implicates("e"), "eaa");
    EXPECT_EQ(implicates("d"), "-");
    std::string const first = written();
    model.engine.piTable->writePI(runHost(), (folder + "/plant").c_str());
    EXPECT_EQ(written(), first);
}

TEST_F(PiTableTest, TellsTheFileAndWhatItRead) {
    EXPECT_EQ(read("c.a=on:c.b=on c.d=on,c.e=on\n"), 1);
    EXPECT_EQ(model.trace.take(), "*** File " + path() + " found. Reading file...\n" +
                                      "\nPI(c.a=on) => c.b=on - c.d=on - \n\t\t=>c.e=on - ");
    EXPECT_EQ(implicates("a"), "bd,e");
}

TEST_F(PiTableTest, WithoutAFileTheTableIsThereAndEmpty) {
    EXPECT_EQ(model.engine.readPI(), 0);
    EXPECT_EQ(model.trace.take(), "can't open " + path() + "\n");
    ASSERT_NE(model.engine.piTable, nullptr);
    EXPECT_EQ(implicates("a"), "-");
}

TEST_F(PiTableTest, AnEmptyFileIsRead) {
    EXPECT_EQ(read(""), 1);
    EXPECT_EQ(model.trace.take(), "*** File " + path() + " found. Reading file...\n");
}

TEST_F(PiTableTest, ANewReadingStartsAnEmptyTable) {
    read("c.a=on:c.b=on\n");
    EXPECT_EQ(read("c.b=on:c.a=on\n"), 1);
    EXPECT_EQ(implicates("a"), "-");
    EXPECT_EQ(implicates("b"), "a");
}

TEST_F(PiTableTest, ALastPieceWithoutALineEndIsDropped) {
    EXPECT_EQ(read("c.a=on:c.b=on\nc.b=on:c.a=on"), 1);
    EXPECT_EQ(implicates("a"), "b");
    EXPECT_EQ(implicates("b"), "-");
}

TEST_F(PiTableTest, AnEmptyListMakesNoEntry) {
    EXPECT_EQ(read("c.a=on:\nc.b=on:,c.d=on\n"), 1);
    EXPECT_EQ(implicates("a"), "-");
    EXPECT_EQ(implicates("b"), "-");  // the first part is what counts
}

TEST_F(PiTableTest, ALineWithoutAColonIsAllHead) {
    EXPECT_EQ(read("c.a=on\nc.b=on:c.d=on\n"), 1);
    EXPECT_EQ(implicates("a"), "-");
    EXPECT_EQ(implicates("b"), "d");
    EXPECT_EQ(complaint([&] { EXPECT_EQ(read("c.a=on c.b=on\n"), -1); }),
              "Atom not found: c.a=on c.b=on\n");
}

TEST_F(PiTableTest, OnlyTheFirstColonEndsTheHead) {
    EXPECT_EQ(complaint([&] { EXPECT_EQ(read("c.a=on:c.b=on:c.d=on\n"), -1); }),
              "Atom not found: c.b=on:c.d=on\n");
}

TEST_F(PiTableTest, AMissingComponentIsOnlyAMessage) {
    model.comps.at("c")->symbol = "other";
    EXPECT_EQ(read("c.a=on:c.b=on\n"), 1);
    EXPECT_EQ(model.trace.take(), "*** File " + path() + " found. Reading file...\n" +
                                      "Component not found: c\n" + "\nPI(c.a=on) => c.b=on - ");
    EXPECT_EQ(implicates("a"), "b");
}

TEST_F(PiTableTest, TheComponentSymbolEndsAtTheFirstDot) {
    EXPECT_EQ(complaint([&] { EXPECT_EQ(read("x.y.a=on:c.b=on\n"), -1); }),
              "Atom not found: x.y.a=on\n");
    EXPECT_NE(model.trace.take().find("Component not found: x\n"), std::string::npos);
    EXPECT_EQ(complaint([&] { EXPECT_EQ(read("nodot:c.b=on\n"), -1); }), "Atom not found: nodot\n");
    EXPECT_NE(model.trace.take().find("Component not found: nodot\n"), std::string::npos);
}

TEST_F(PiTableTest, AnUnknownHeadStopsTheReadingAndKeepsWhatWasRead) {
    std::size_t const atoms = thePlant().active_atoms.size();
    EXPECT_EQ(
        complaint([&] { EXPECT_EQ(read("c.a=on:c.b=on\nc.z=on:c.a=on\nc.b=on:c.a=on\n"), -1); }),
        "Atom not found: c.z=on\n");
    EXPECT_EQ(implicates("a"), "b");
    EXPECT_EQ(implicates("b"), "-");
    EXPECT_EQ(thePlant().active_atoms.size(), atoms);  // the word was not entered
    EXPECT_EQ(model.trace.take().find("PI("), std::string::npos);
}

TEST_F(PiTableTest, AnUnknownWordDoesToo) {
    EXPECT_EQ(complaint([&] { EXPECT_EQ(read("c.a=on:c.b=on,c.d=on c.z=on\n"), -1); }),
              "Atom not found: c.z=on\n");
    EXPECT_EQ(implicates("a"), "-");
}

TEST_F(PiTableTest, AnEmptyLineNamesNoAtom) {
    EXPECT_EQ(complaint([&] { EXPECT_EQ(read("\nc.a=on:c.b=on\n"), -1); }), "Atom not found: \n");
}

TEST_F(PiTableTest, BlanksMoreThanOneSeparateTheSame) {
    EXPECT_EQ(read("c.a=on: c.b=on  c.d=on ,c.e=on\n"), 1);
    EXPECT_EQ(implicates("a"), "bd,e");
}

TEST_F(PiTableTest, ALineOfAMegabyteIsReadWhole) {
    std::string line = "c.a=on:";
    std::size_t const members = 150000;
    for (std::size_t i = 0; i < members; ++i)
        line += i == 0 ? "c.b=on" : i % 2 == 0 ? ",c.b=on" : " c.d=on";
    ASSERT_GT(line.size(), 1u << 20);
    EXPECT_EQ(read(line + "\n"), 1);
    Implicates const* list = model.engine.piTable->getPIs(model.atom("a"));
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->size(), members / 2);
    EXPECT_EQ(list->back().size(), 2u);
    EXPECT_EQ(list->back().back(), model.atom("d"));
}

// A line end may fall on the last byte of any piece that the file is read in.
TEST_F(PiTableTest, NoLengthOfALineMatters) {
    for (std::size_t const length : {1021u, 1022u, 1023u, 1024u, 1025u, 2046u, 2048u}) {
        std::string line = "c.a=on:c.b=on";
        line += std::string(length - line.size() - 7, ' ') + " c.d=on";
        ASSERT_EQ(line.size(), length);
        EXPECT_EQ(read(line + "\nc.b=on:c.e=on\n"), 1);
        EXPECT_EQ(implicates("a"), "bd") << length;
        EXPECT_EQ(implicates("b"), "e") << length;
    }
}

// The host opens no folder, which would read as a file without text.
TEST_F(PiTableTest, AFolderInTheFilesPlaceIsNoFile) {
    std::filesystem::create_directories(path());
    EXPECT_EQ(model.engine.readPI(), 0);
    EXPECT_EQ(implicates("a"), "-");
}

}  // namespace
