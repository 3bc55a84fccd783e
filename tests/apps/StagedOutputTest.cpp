// Output that is whole or not there.
#include "writing/StagedOutput.h"

#include "Program.h"
#include "console/Messages.h"

namespace {

namespace fs = std::filesystem;
using program::StagedOutput;

class StagedOutputs : public qel_test::Program {
protected:
    std::string at(const std::string& file) const { return (folder / file).string(); }

    static void writeAt(const fs::path& path, const std::string& content) {
        std::ofstream(path) << content;
    }

    static void expectError(const std::function<void()>& work, const std::string& message) {
        try {
            work();
            ADD_FAILURE() << "no error: " << message;
        } catch (const program::UserError& error) {
            EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
        }
    }
};

TEST_F(StagedOutputs, IsThereOnceItIsCommitted) {
    StagedOutput staged(at("out.csv"));
    EXPECT_EQ(fs::path(staged.path()).filename(), "out.csv");
    writeAt(staged.path(), "new");
    EXPECT_FALSE(fs::exists(folder / "out.csv"));
    staged.commit();
    EXPECT_EQ(text("out.csv"), "new");
}

TEST_F(StagedOutputs, WithoutACommitNothingChanges) {
    write("out.csv", "old");
    {
        const StagedOutput staged(at("out.csv"));
        writeAt(staged.path(), "new");
    }
    EXPECT_EQ(text("out.csv"), "old");
    EXPECT_EQ(files(), std::vector<std::string>{"out.csv"});
}

TEST_F(StagedOutputs, ACommitReplacesWhatWasThere) {
    write("out.csv", "old");
    {
        StagedOutput staged(at("out.csv"));
        writeAt(staged.path(), "new");
        staged.commit();
    }
    EXPECT_EQ(text("out.csv"), "new");
    EXPECT_EQ(files(), std::vector<std::string>{"out.csv"});
}

TEST_F(StagedOutputs, FilesAndFoldersBesideItComeAlong) {
    {
        StagedOutput staged(at("out.vtm"));
        const fs::path beside = fs::path(staged.path()).parent_path();
        writeAt(staged.path(), "blocks");
        writeAt(beside / "more.txt", "more");
        fs::create_directory(beside / "out");
        writeAt(beside / "out/out_0.vtu", "new piece");
        fs::create_directory(folder / "out");
        write("out/out_1.vtu", "old piece");
        staged.commit();
    }
    EXPECT_EQ(files(), (std::vector<std::string>{"more.txt", "out", "out.vtm"}));
    EXPECT_EQ(text("out/out_0.vtu"), "new piece");
    EXPECT_FALSE(fs::exists(folder / "out/out_1.vtu"));
}

TEST_F(StagedOutputs, AFolderOfTheUserIsNotReplaced) {
    StagedOutput staged(at("out.vtm"));
    writeAt(staged.path(), "blocks");
    fs::create_directory(fs::path(staged.path()).parent_path() / "out");
    fs::create_directory(folder / "out");
    write("out/notes.txt", "precious");
    expectError([&] { staged.commit(); }, "there is something else of that name");
    EXPECT_EQ(text("out/notes.txt"), "precious");
    EXPECT_FALSE(fs::exists(folder / "out.vtm"));
}

TEST_F(StagedOutputs, ACommitOfNothingIsAnError) {
    StagedOutput staged(at("out.csv"));
    expectError([&] { staged.commit(); }, "out.csv: nothing was written");
}

TEST_F(StagedOutputs, ALinkIsWrittenThrough) {
    fs::create_directory(folder / "far");
    write("far/out.csv", "old");
    fs::create_symlink("far/out.csv", folder / "link.csv");
    program::writeText(at("link.csv"), "new");
    EXPECT_TRUE(fs::is_symlink(folder / "link.csv"));
    EXPECT_EQ(text("far/out.csv"), "new");
}

TEST_F(StagedOutputs, PlacesThatCannotBeWrittenAreRefused) {
    fs::create_directory(folder / "here");
    ASSERT_EQ(shell("mkfifo pipe").status, 0);
    for (const auto& [file, why] :
         {std::pair("nowhere/out.csv", "there is no folder"), std::pair("here", "it is a folder"),
          std::pair("here/", "it is a folder"), std::pair("pipe", "it is no ordinary file")}) {
        SCOPED_TRACE(file);
        expectError([&, name = file] { const StagedOutput staged(at(name)); }, why);
        expectError([&, name = file] { program::checkWritable(at(name)); }, why);
        expectError([&, name = file] { program::writeText(at(name), "text"); }, why);
    }
    EXPECT_EQ(files(), (std::vector<std::string>{"here", "pipe"}));
}

TEST_F(StagedOutputs, TheFolderIsCheckedBeforeTheNameIsKnown) {
    fs::create_directory(folder / "here");
    program::checkFolder(at("here")); // a file in the folder above, whose ending is yet to come
    expectError([&] { program::checkFolder(at("nowhere/out")); }, "there is no folder");
}

TEST_F(StagedOutputs, PiecesOfAnEarlierRunMayBeReplaced) {
    program::checkPieceFolder(folder / "out");
    fs::create_directory(folder / "out");
    program::checkPieceFolder(folder / "out");
    write("out/out_0.vtu", "");
    write("out/out_12.vti", "");
    program::checkPieceFolder(folder / "out");
    for (const char* other : {"out/out_a.vtu", "out/out_0.csv", "out/other_0.vtu"}) {
        SCOPED_TRACE(other);
        write(other, "");
        expectError([&] { program::checkPieceFolder(folder / "out"); }, "something else");
        fs::remove(folder / other);
    }
    write("file", "");
    expectError([&] { program::checkPieceFolder(folder / "file"); }, "something else");
}

} // namespace
