// The issue-reproduction flow through the window's start/stop and save buttons.
#include "app_root.h"
#include "logclient/logclient.h"
#include "support/files.h"
#include "window_fixture.h"

namespace apptest {
namespace {

namespace fs = std::filesystem;
using testsupport::AnswerNextDialog;
using testsupport::DialogRecord;
using testsupport::WriteFile;

TEST_F(WindowTest, RunRaisesEveryClassGivesAllClassZerosLevelBackArchivesSavesAndStartsAgain) {
  const std::string clientLog = (Logs() / "ORBClient.log").string();
  log_client_init();
  ASSERT_TRUE(log_set_class_level(0, 3) && log_set_class_level(7, 6) && log_set_shared_path(clientLog.c_str()));
  WriteFile(Logs() / "KeywardSvr.latest", "keyward before the run\n");
  const fs::path target = scratch_ / "run.tar.gz";
  std::string suggested;
  RunWindow([&](GtkWidget*) {
    Click(app_->startStopButton);
    ASSERT_EQ(app_->collecting, 1);
    EXPECT_TRUE(AllClassesAt(Home(), 1));
    EXPECT_EQ(ReadLogPath(Home()), (Issue() / "ORBClient.log").string());
    EXPECT_TRUE(fs::exists(Marker()));
    // What the client writes while the user reproduces the issue.
    WriteFile(Issue() / "ORBClient.log", "verbose client lines\n");
    WriteFile(Logs() / "userActivitylog.latest", "clicked connect\n");
    WriteFile(Logs() / "kvlog.latest", "sibling lines\n");

    Click(app_->startStopButton);
    EXPECT_EQ(app_->collecting, 2);
    EXPECT_TRUE(AllClassesAt(Home(), 3)) << "class 7 had 6, and must get class 0's 3 like all others";
    EXPECT_EQ(ReadLogPath(Home()), clientLog);
    EXPECT_FALSE(fs::exists(Marker()));
    EXPECT_EQ(LabelText(app_->stopText), "Click \"Save logs\" to save the logs to the desired location.");

    testsupport::SaveAsInNextFileChooser(target, nullptr, &suggested);
    Click(app_->saveButton);
    EXPECT_EQ(LabelText(app_->saveButton), "View saved logs");
    EXPECT_EQ(LabelText(app_->stopText), "Click \"View saved logs\" to view the recently saved logs.");
    // The save removed the staged logs, so the next run starts without asking.
    Click(app_->startStopButton);
    EXPECT_EQ(app_->collecting, 1);
    EXPECT_EQ(LabelText(app_->saveButton), "Save logs");
  });
  EXPECT_EQ(suggested, "NorvexDeskline-IssueLogs.tar.gz");
  EXPECT_EQ(ArchiveMembers(target), (std::vector<std::string>{"DesklineCheck.txt", "Envdump.txt", "KeywardConfig.xml",
                                                               "KeywardSvr.latest", "ORBClient.log", "UserSystemInfo.txt",
                                                               "kvlog.latest", "userActivitylog.latest"}));
  EXPECT_EQ(ArchiveMember(target, "ORBClient.log"), "verbose client lines\n");
}

// Closing the question by the window manager must count as "Close".
class OverwriteQuestionTest : public WindowTest, public ::testing::WithParamInterface<bool> {};

TEST_P(OverwriteQuestionTest, AnyAnswerButContinueLeavesTheRunUnstarted) {
  log_client_init();
  ASSERT_TRUE(log_set_class_level(9, 2));
  WriteFile(Issue() / "userActivitylog.latest", "from the last run\n");
  DialogRecord question;
  RunWindow([&](GtkWidget*) {
    testsupport::WhenDialogAppears([&](GtkDialog* dialog) {
      question = testsupport::Describe(dialog);
      if (GetParam()) gtk_window_close(GTK_WINDOW(dialog));
      else testsupport::ClickButton(dialog, "Close");
    });
    Click(app_->startStopButton);
  });
  EXPECT_EQ(question.title, "Norvex Log Collection Utility");
  EXPECT_EQ(question.message, "Are you sure you want to continue? Your recent logs will be overwritten.");
  EXPECT_EQ(question.buttons, (std::vector<std::string>{"Continue", "Close"}));
  EXPECT_EQ(question.iconName, "dialog-warning");
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_EQ(LabelText(app_->startStopButton), "Start collecting logs");
  EXPECT_TRUE(fs::exists(Marker()));
  EXPECT_EQ(ReadClassLevel(Home(), 9), 2);
}

INSTANTIATE_TEST_SUITE_P(Answer, OverwriteQuestionTest, ::testing::Bool(),
                         [](const auto& info) { return info.param ? "WindowClosed" : "Close"; });

TEST_F(WindowTest, StartRefusedWhenTheIssueFolderCannotBeMade) {
  fs::remove_all(Logs());
  WriteFile(Logs(), "a file where the log folder should be");
  DialogRecord error;
  RunWindow([&](GtkWidget*) {
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &error);
    Click(app_->startStopButton);
  });
  fs::remove(Logs());
  EXPECT_EQ(error.message, "Failed to create the log file folder at \"" + app_->issueFolder.string() +
                               "\".\nPlease check the folder permisions and try again.");
  EXPECT_EQ(app_->collecting, 0);
}

TEST_F(WindowTest, FailingTarOffersNoArchiveInEitherFlow) {
  // Like a real tar meeting a write error half-way: a cut archive and status 2.
  fs::remove(bin_ / "tar");
  testsupport::WriteScript(bin_ / "tar", "printf cut > \"$2\"\nexit 2");
  WriteFile(Logs() / "kvlog.1", "sibling\n");
  DialogRecord existing, stop;
  bool chooserSeen = false;
  RunWindow([&](GtkWidget*) {
    testsupport::SaveAsInNextFileChooser("", &chooserSeen);
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &existing);
    Click(app_->existingLogButton);
    AnswerNextDialog(GTK_RESPONSE_ACCEPT);  // the configuration copy counts as a recent log
    Click(app_->startStopButton);
    AnswerNextDialog(GTK_RESPONSE_ACCEPT, &stop);
    Click(app_->startStopButton);
  });
  for (const DialogRecord& error : {existing, stop}) {
    EXPECT_EQ(error.message, "Failed to save the log file archive. Please try again.");
    EXPECT_EQ(error.iconName, "dialog-error");
  }
  EXPECT_FALSE(chooserSeen);
  EXPECT_EQ(app_->collecting, 0);
  EXPECT_FALSE(Visible(app_->saveButton));
  EXPECT_TRUE(Visible(app_->existingLogButton));
  EXPECT_EQ(app_->lastSavedText, "");
}

}  // namespace
}  // namespace apptest
