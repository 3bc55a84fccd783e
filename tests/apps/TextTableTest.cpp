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
        return program::readTables((folder / "table.txt").string());
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

TEST_F(TextTables, AnErrorNamesTheLine) {
    expectError("x,y\n0,0\n1,abc\n", "table.txt, line 3: \"1,abc\" is no row of numbers");
    expectError("0 0\n1\n", "table.txt, line 2: a row of 1 numbers after rows of 2");
    expectError("0,N/A\n1,1\n", "table.txt, line 1: \"0,N/A\" is no row of numbers");
    expectError("1,2\n3,\n", "table.txt, line 2");
    expectError("1,2\n3,0x10\n", "table.txt, line 2: \"3,0x10\" is no row of numbers");
    expectError("", "table.txt has no rows of numbers");
    expectError("words alone\n", "table.txt has no rows of numbers");
}

} // namespace
