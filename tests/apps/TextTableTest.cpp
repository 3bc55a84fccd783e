// Tables of numbers in text files.
#include "reading/TextTable.h"

#include <cmath>

#include "Program.h"
#include "console/Messages.h"

namespace {

using program::TextTable;
using Rows = std::vector<std::vector<double>>;
using Words = std::vector<std::string>;

class TextTables : public qel_test::Program {
protected:
    std::vector<TextTable> read(const std::string& content) const {
        write("table.txt", content);
        return program::readTables({(folder / "table.txt").string(), program::FileKind::text});
    }

    TextTable readOne(const std::string& content) const {
        const auto tables = read(content);
        EXPECT_EQ(tables.size(), 1U);
        return tables.front();
    }

    void expectError(const std::string& content, const std::string& message) const {
        SCOPED_TRACE(content);
        try {
            read(content);
            ADD_FAILURE() << "no error";
        } catch (const program::UserError& error) {
            EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
        }
    }
};

TEST_F(TextTables, SeparatorsAreCommasSemicolonsTabsOrSpaces) {
    for (const char* text : {"1,2,3\n4,5,6\n", "1; 2 ;3\n4;5;6", "1\t2\t3\n4\t5\t6\n",
                             "  1   2 3\n4 5\t6  \n", "1, 2, 3\r\n4, 5, 6\r\n"}) {
        SCOPED_TRACE(text);
        const TextTable table = readOne(text);
        EXPECT_EQ(table.rows, (Rows{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}}));
        EXPECT_EQ(table.header, Words());
        EXPECT_EQ(table.title, "");
    }
}

TEST_F(TextTables, NumbersAreReadAsProgramsWriteThem) {
    const TextTable table = readOne("+1.5 -2e3 3.0D-2 .5 inf 1e999\n");
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(table.rows, (Rows{{1.5, -2000.0, 0.03, 0.5, infinity, infinity}}));
    EXPECT_TRUE(std::isnan(readOne("nan 1\n").rows[0][0]));
}

TEST_F(TextTables, AHeaderHasAWordForEachColumn) {
    EXPECT_EQ(readOne("x,y,mass flow\n1,2,3\n").header, (Words{"x", "y", "mass flow"}));
    EXPECT_EQ(readOne("\"x\";\"y\"\n1;2\n").header, (Words{"x", "y"}));
    EXPECT_EQ(readOne("x y\n1 2\n").header, (Words{"x", "y"}));
    EXPECT_EQ(readOne("\xEF\xBB\xBFx,y\n1,2\n").header, (Words{"x", "y"}));
    EXPECT_EQ(readOne("x,y,z\n1,2\n").header, Words());
}

TEST_F(TextTables, TwoWordsAboveTwoColumnsAreATitle) {
    const TextTable table = readOne("NACA 2412\n\n1 0\n0.5 0.1\n");
    EXPECT_EQ(table.title, "NACA 2412");
    EXPECT_EQ(table.header, Words());
    EXPECT_EQ(table.rows.size(), 2U);
}

TEST_F(TextTables, CommentsAreLeftOut) {
    EXPECT_EQ(readOne("# x y\n1 2\n% between\n#\n3 4\n").rows, (Rows{{1.0, 2.0}, {3.0, 4.0}}));
}

TEST_F(TextTables, BlankLinesAndTitlesStartNewTables) {
    const auto tables = read("x,y\n1,2\n\n3,4\nlower side\n5,6\n7,8\n");
    ASSERT_EQ(tables.size(), 3U);
    EXPECT_EQ(tables[1].rows, (Rows{{3.0, 4.0}}));
    EXPECT_EQ(tables[2].title, "lower side");
    EXPECT_EQ(tables[2].rows.size(), 2U);
    for (const TextTable& table : tables) {
        EXPECT_EQ(table.header, (Words{"x", "y"})); // of the first, as it has as many columns
    }
}

TEST_F(TextTables, TablesMayDifferInTheirColumns) {
    const auto tables = read("x,y\n1,2\n\n1,2,3\n");
    ASSERT_EQ(tables.size(), 2U);
    EXPECT_EQ(tables[1].rows, (Rows{{1.0, 2.0, 3.0}}));
    EXPECT_EQ(tables[1].header, Words());
}

TEST_F(TextTables, ATableWithoutRowsIsDropped) {
    EXPECT_EQ(readOne("first title\nsecond title\n1 2\n").title, "second title");
}

TEST_F(TextTables, WordsMayStandBesideNumbers) {
    for (const char* text :
         {"station,x,y\nhub,1,2\nmid 2,3,4\n", "station;x;y\nhub;1;2\nmid 2;3;4\n",
          "\"station\",x,y\n\"hub\",1,2\n\"mid 2\",3,4\n"}) {
        SCOPED_TRACE(text);
        const TextTable table = readOne(text);
        EXPECT_EQ(table.header, (Words{"station", "x", "y"}));
        ASSERT_EQ(table.rows.size(), 2U);
        EXPECT_EQ(table.texts[0], (Words{"hub", "mid 2"}));
        EXPECT_FALSE(table.isText(1));
        EXPECT_EQ(table.rows[1][2], 4.0);
    }
    EXPECT_EQ(readOne("hub 1 2\ntip 3 4\n").texts[0], (Words{"hub", "tip"}));
    EXPECT_EQ(readOne("1,2,\"a, \"\"b\"\"\"\n3,4,c\n").texts[2], (Words{"a, \"b\"", "c"}));
    // Pairs of a word and a number are titles.
    EXPECT_EQ(readOne("Mach 0.3\nalpha 2.0\n0 0\n1 1\n").rows.size(), 2U);
}

TEST_F(TextTables, EmptyCellsAreUndefined) {
    const TextTable table = readOne("x,y,t,note\n1,2,,\n3,4,n/a,gap\n5,6,7,\n");
    EXPECT_TRUE(std::isnan(table.rows[0][2]));
    EXPECT_TRUE(std::isnan(table.rows[1][2]));
    EXPECT_EQ(table.rows[2][2], 7.0);
    EXPECT_EQ(table.texts[3], (Words{"", "gap", ""}));
    expectError("x,y,t\n1,2,\n3,4,5\n6,7,gap\n", "line 4: \"6,7,gap\" is no row of numbers");
}

TEST_F(TextTables, DecimalCommasAreTold) {
    for (const char* text :
         {"0,5;1,25;2\n-3,0E1;4;5\n", "0,5 1,25 2\n-3,0E1 4 5\n", "0,5\t1,25\t2\n-3,0E1\t4\t5\n"}) {
        EXPECT_EQ(readOne(text).rows, (Rows{{0.5, 1.25, 2.0}, {-30.0, 4.0, 5.0}})) << text;
    }
    EXPECT_EQ(readOne("0,5\n1,25\n").rows[1], (std::vector<double>{1.0, 25.0}));
}

TEST_F(TextTables, HeadersMayHoldNumbers) {
    const TextTable table = readOne(
        "Blade Geometry\n  J      Z        R     THETA 1   THETA 2\n 1 2 3 4 5\n 2 3 4 5 6\n");
    EXPECT_EQ(table.header, (Words{"J", "Z", "R", "THETA 1", "THETA 2"}));
    EXPECT_EQ(table.title, "Blade Geometry");
    EXPECT_EQ(readOne("x,y,10\n1,2,3\n").header, (Words{"x", "y", "10"}));
    const auto two = read("x y p1 2020\n1 2 3 4\nx y p1 2021\n1 2 3 4\n");
    ASSERT_EQ(two.size(), 2U);
    EXPECT_EQ(two[1].header, (Words{"x", "y", "p1", "2021"}));
}

TEST_F(TextTables, AnErrorNamesTheLine) {
    expectError("x,y\n0,0\n1,abc\n", "table.txt, line 3: \"1,abc\" is no row of numbers");
    expectError("0 0\n1\n", "table.txt, line 2: a row of 1 numbers after rows of 2");
    expectError("0,abc\n1,1\n", "table.txt, line 1: \"0,abc\" is no row of numbers");
    expectError("1,2\n3,0x10\n", "table.txt, line 2: \"3,0x10\" is no row of numbers");
    expectError("", "table.txt has no rows of numbers");
    expectError("words alone\n", "table.txt has no rows of numbers");
}

} // namespace
