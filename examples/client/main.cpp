// A whiteboard: alone, in a lesson with others, or a lesson that is played again.
#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QRandomGenerator>
#include <QSaveFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstdio>
#include <memory>
#include <optional>

#include "lesson/lesson_name.h"
#include "lesson/local_bus.h"
#include "lesson/nats_bus.h"
#include "lesson/player.h"
#include "lesson/recording.h"
#include "lesson/session.h"
#include "window/main_window.h"
#include "window/replay_window.h"
#include "window/style.h"

namespace whiteboard {
namespace {

constexpr int kFailure = 1;
constexpr int kMisuse = 2;
constexpr double kHistorySeconds = 60;

struct Options {
  QString board;
  QString lesson;
  QString server;
  QString token;
  QString user;
  QString replay;
  bool replays = false;
};

int fail(int code, const QString& what) {
  std::fprintf(stderr, "whiteboard: %s\n", qPrintable(what));
  return code;
}

/// Whether a window can be opened; otherwise Qt ends the program in its own, less clear way.
bool hasDisplay() {
#if defined(Q_OS_UNIX) && !defined(Q_OS_DARWIN)
  return !qEnvironmentVariableIsEmpty("DISPLAY") ||
         !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
         !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
  return true;
#endif
}

/// An identifier that no other program that runs has.
std::string userOf(const Options& options) {
  const QString random = QString::number(QRandomGenerator::system()->generate64(), 36);
  return (options.user + '-' + random).toStdString();
}

/// When the board in a folder was created: as it was noted then, or now.
double createdIn(const QString& folder) {
  QFile note(folder + "/created");
  if (note.open(QIODevice::ReadOnly)) {
    bool isNumber = false;
    const double created = note.readLine(64).trimmed().toDouble(&isNumber);
    if (isNumber) return created;
  }
  const double now = VelWhiteBoard::currentTime();
  QSaveFile written(folder + "/created");
  if (written.open(QIODevice::WriteOnly)) {
    written.write(QByteArray::number(now, 'f', 3));
    written.commit();
  }
  return now;
}

NatsBus::Options natsOptions(const Options& options, const std::string& unsentFile) {
  NatsBus::Options nats;
  nats.url = options.server.toStdString();
  nats.lesson = options.lesson.toStdString();
  nats.token = options.token.toStdString();
  nats.unsentFile = unsentFile;
  return nats;
}

int runReplay(const Options& options) {
  ReadRecording read;
  if (options.replay.isEmpty()) {
    NatsBus::Options server = natsOptions(options, {});
    server.makesLesson = false;
    NatsBus bus(std::move(server));
    read = recordLesson(bus, kHistorySeconds);
  } else {
    read = readRecording(options.replay.toStdString());
  }
  if (!read.problem.empty()) return fail(kFailure, QString::fromStdString(read.problem));
  if (read.skipped > 0) {
    std::fprintf(stderr, "whiteboard: %zu lines hold no vector and are left out\n", read.skipped);
  }
  const QTemporaryDir folder;
  if (!folder.isValid()) return fail(kFailure, folder.errorString());
  const auto first = read.recording.firstPage();
  Board board(folder.path().toStdString(),
              first ? Board::PageNumber{first->WBID, first->curPage} : Board::PageNumber{1, 1});
  Player player(board, std::move(read.recording));
  ReplayWindow window(board, player);
  const QString title =
      options.replay.isEmpty() ? options.lesson : QFileInfo(options.replay).fileName();
  window.setWindowTitle(QObject::tr("%1 - replay").arg(title));
  window.show();
  player.play();
  return QApplication::exec();
}

int runBoard(const Options& options) {
  const bool isShared = !options.lesson.isEmpty();
  const QString folder = isShared ? options.board + "/lesson-" + options.lesson : options.board;
  if (!QDir().mkpath(folder)) {
    return fail(kFailure, QObject::tr("cannot make the folder %1").arg(folder));
  }
  QLockFile lock(folder + "/lock");
  lock.setStaleLockTime(0);
  if (!lock.tryLock()) {
    return fail(kFailure, QObject::tr("the board in %1 is open in another window").arg(folder));
  }
  std::unique_ptr<Bus> bus;
  if (isShared) {
    bus = std::make_unique<NatsBus>(natsOptions(options, (folder + "/unsent").toStdString()));
  } else {
    bus = std::make_unique<LocalBus>(createdIn(folder));
  }
  Board board(folder.toStdString());
  Session session(board, std::move(bus), isShared ? Session::Kind::kShared : Session::Kind::kAlone,
                  userOf(options));
  MainWindow window(session, isShared);
  window.setWindowTitle(isShared ? QString("%1 - %2").arg(options.lesson, options.user)
                                 : QObject::tr("Whiteboard"));
  window.show();
  return QApplication::exec();
}

std::optional<Options> optionsOf(const QCoreApplication& application) {
  QCommandLineParser parser;
  parser.setApplicationDescription(
      QObject::tr("A whiteboard. Without options it opens a board of this computer."));
  parser.addHelpOption();
  parser.addVersionOption();
  const QString ownBoards =
      QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + "/whiteboard";
  parser.addOptions({
      {"board", QObject::tr("The folder of the board."), "folder", ownBoards},
      {"lesson", QObject::tr("Take part in a lesson with others."), "name"},
      {"server", QObject::tr("The lesson's server."), "url", "nats://127.0.0.1:4222"},
      {"token",
       QObject::tr("What the server asks for; the variable WHITEBOARD_TOKEN does as well, "
                   "and others do not see it."),
       "token", qEnvironmentVariable("WHITEBOARD_TOKEN")},
      {"name", QObject::tr("Your name."), "name", qEnvironmentVariable("USER", "somebody")},
      {"replay", QObject::tr("Play a recorded lesson: a file, or - for the one of --lesson."),
       "file"},
  });
  parser.process(application);
  Options options;
  options.board = parser.value("board");
  options.lesson = parser.value("lesson");
  options.server = parser.value("server");
  options.token = parser.value("token");
  options.user = parser.value("name");
  options.replays = parser.isSet("replay");
  options.replay = parser.value("replay") == "-" ? QString() : parser.value("replay");
  if (!parser.positionalArguments().isEmpty()) {
    fail(kMisuse, QObject::tr("unexpected: %1").arg(parser.positionalArguments().first()));
    return std::nullopt;
  }
  const bool needsLesson = options.replays && options.replay.isEmpty();
  const bool hasLesson = parser.isSet("lesson") || needsLesson;
  if (hasLesson && !isLessonName(options.lesson.toStdString())) {
    fail(kMisuse,
         QObject::tr("the name of a lesson consists of up to 64 letters, digits, - and _"));
    return std::nullopt;
  }
  return options;
}

}  // namespace
}  // namespace whiteboard

int main(int argc, char* argv[]) {
  QCoreApplication::setApplicationName("whiteboard");
  QCoreApplication::setApplicationVersion(VELWHITEBOARD_VERSION_STRING);
  std::optional<whiteboard::Options> options;
  {
    // Without windows: --help needs no display.
    const QCoreApplication application(argc, argv);
    options = whiteboard::optionsOf(application);
  }
  if (!options) return whiteboard::kMisuse;
  if (!whiteboard::hasDisplay()) {
    return whiteboard::fail(whiteboard::kFailure, "there is no display to open a window on");
  }
  QApplication application(argc, argv);
  whiteboard::applyStyle(application);
  return options->replays ? whiteboard::runReplay(*options) : whiteboard::runBoard(*options);
}
