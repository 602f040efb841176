// The issue-reproduction flow through the window's start/stop button, with the
// logging client mapping the shared area of the test HOME.
#include <gtest/gtest.h>

#include "app_root.h"
#include "support/dialogs.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

using testsupport::AnswerNextDialog;
using testsupport::DialogRecord;
using testsupport::WriteFile;

class IssueFlowTest : public WindowTest {
 protected:
  std::string ClientLogPath() const { return home().string() + "/.ORBClient/logs/ORBClient.log"; }
};

TEST_F(IssueFlowTest, WholeRunRaisesEveryClassRestoresClassZerosLevelArchivesAndSaves) {
  WriteLogArea(home(), 3, 7, 6, ClientLogPath());
  WriteFile(LogsFolder() / "KeywardSvr.latest", "keyward before the run\n");
  const std::filesystem::path target = scratch_ / "run.tar.gz";
  std::string suggested;
  RunWindow([&](GtkWidget*) {
    Click(app_->startStopButton);
    ASSERT_EQ(app_->collecting, 1);
    EXPECT_TRUE(AllClassesAt(home(), 1));
    EXPECT_EQ(ReadLogPath(home()), home().string() + "/.ORBClient/logs/issuereproduce/ORBClient.log");
    const auto peerLines = LogdPeer().WaitForLines(1);
    EXPECT_TRUE(!peerLines.empty() && peerLines[0] == "hello norvex-app_tests client=0") << LogdPeer().Errors();
    EXPECT_TRUE(std::filesystem::exists(Marker()));
    EXPECT_EQ(LabelText(app_->startStopButton), "Stop collecting logs");
    // What the client writes while the user reproduces the issue.
    WriteFile(IssueFolder() / "ORBClient.log", "verbose client lines\n");
    WriteFile(LogsFolder() / "userActivitylog.latest", "clicked connect\n");
    WriteFile(LogsFolder() / "kvlog.latest", "sibling lines\n");

    Click(app_->startStopButton);
    EXPECT_EQ(app_->collecting, 2);
    EXPECT_TRUE(AllClassesAt(home(), 3)) << "class 7 had 6, every class must get class 0's 3";
    EXPECT_EQ(ReadLogPath(home()), ClientLogPath());
    EXPECT_FALSE(std::filesystem::exists(Marker()));
    EXPECT_EQ(LabelText(app_->saveButton), "Save logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"Save logs\" to save the logs to the desired location.");

    testsupport::SaveAsInNextFileChooser(target, nullptr, &suggested);
    Click(app_->saveButton);
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
  });
  EXPECT_EQ(suggested, "NorvexDeskline-IssueLogs.tar.gz");
  EXPECT_EQ(app_->savedLogsLocation, target);
  auto members = ArchiveMembers(target);
  std::sort(members.begin(), members.end());
  EXPECT_EQ(members, (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardConfig.xml",
                                                "KeywardSvr.latest", "ORBClient.log", "UserSystemInfo.txt",
                                                "kvlog.latest", "userActivitylog.latest"}));
  EXPECT_EQ(ArchiveMember(target, "ORBClient.log"), "verbose client lines\n");
}

// Closing the question by the window manager must count as "Close".
class OverwriteQuestionTest : public IssueFlowTest, public ::testing::WithParamInterface<int> {};

TEST_P(OverwriteQuestionTest, AnyAnswerButContinueLeavesTheRunUnstarted) {
  WriteLogArea(home(), 4, 9, 2, ClientLogPath());
  WriteFile(IssueFolder() / "userActivitylog.latest", "from the last run\n");
  DialogRecord question;
  std::string saveLabelWhenAsked;
  RunWindow([&](GtkWidget*) {
    // As after an earlier save: the new run must reset this before asking.
    gtk_button_set_label(GTK_BUTTON(app_->saveButton), "View saved logs");
    app_->saveButtonIsView = 1;
    testsupport::WhenDialogAppears([&](GtkDialog*) { saveLabelWhenAsked = LabelText(app_->saveButton); });
    AnswerNextDialog(GetParam(), &question);
    Click(app_->startStopButton);
  });
  ASSERT_TRUE(question.seen);
  EXPECT_EQ(question.message, "Are you sure you want to continue? Your recent logs will be overwritten.");
  EXPECT_EQ(question.title, "Norvex Log Collection Utility");
  EXPECT_EQ(question.buttons, (std::vector<std::string>{"Continue", "Close"}));
  EXPECT_EQ(question.iconName, "dialog-warning");
  EXPECT_EQ(saveLabelWhenAsked, "Save logs");
  EXPECT_EQ(app_->saveButtonIsView, 0);
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
  EXPECT_TRUE(std::filesystem::exists(Marker()));
  EXPECT_FALSE(std::filesystem::exists(IssueFolder() / "UserSystemInfo.txt"));
  EXPECT_EQ(ReadClassLevel(home(), 0), 4);
  EXPECT_EQ(ReadClassLevel(home(), 9), 2);
  EXPECT_EQ(ReadLogPath(home()), ClientLogPath());
}

INSTANTIATE_TEST_SUITE_P(Answers, OverwriteQuestionTest,
                         ::testing::Values(GTK_RESPONSE_REJECT, GTK_RESPONSE_DELETE_EVENT));

TEST_F(IssueFlowTest, StopWithNothingGatheredNamesTheIssueFolder) {
  DialogRecord error;
  RunWindow([&](GtkWidget*) {
    app_->collecting = 1;
    app_->ShowCollectingState();
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &error);
    Click(app_->startStopButton);
  });
  ASSERT_TRUE(error.seen);
  EXPECT_EQ(error.message,
            "No files found at \"" + app_->issueFolder.string() + "\".\nUnable to create the tar archive.");
  EXPECT_EQ(error.iconName, "dialog-error");
  EXPECT_EQ(error.buttons, std::vector<std::string>{"OK"});
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_TRUE(Visible(app_->existingLogButton));
  EXPECT_FALSE(Visible(app_->saveButton));
}

TEST_F(IssueFlowTest, StartRefusedWhenTheIssueFolderCannotBeMade) {
  WriteLogArea(home(), 4, 9, 2, ClientLogPath());
  std::filesystem::remove_all(LogsFolder());
  WriteFile(LogsFolder(), "a file where the log folder should be");
  DialogRecord error;
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &error);
    Click(app_->startStopButton);
  });
  std::filesystem::remove(LogsFolder());
  EXPECT_EQ(error.message, "Failed to create the log file folder at \"" + app_->issueFolder.string() +
                               "\".\nPlease check the folder permisions and try again.");
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_EQ(ReadClassLevel(home(), 9), 2);
}

}  // namespace
}  // namespace apptest
