// Pages as files.
#include "drawing/export.h"

#include <QFile>
#include <QSvgRenderer>
#include <csignal>
#include <string>
#include <sys/resource.h>

#include <gtest/gtest.h>

#include "tests/client/drawing/random_pages.h"
#include "tests/client/drawing/tools.h"
#include "tests/support/temporary_folder.h"

namespace whiteboard {
namespace {

/// Pages of ordinary entries.
vwb::VectorList pageWithoutErasers() {
  auto words = text("Sine and cosine", QRectF(20, 20, 150, 30), 14);
  words->bgColor = "#FFEEAAFF";
  auto picture = box<vwb::VelWbVecFile>(vwb::VelWBVectorStrImage, QRectF(250, 30, 100, 60));
  picture->rotation = 20;
  QImage green(40, 30, QImage::Format_RGB32);
  green.fill(Qt::darkGreen);
  picture->url = urlOf(green);
  return {words,
          stroke(vwb::VelWBVectorStrLine, {{20, 100}, {90, 160}, {160, 90}, {230, 170}}, 4),
          stroke(vwb::VelWBVectorStrMarkerPen, {{20, 120}, {220, 120}}, 20, "#FFDD0067"),
          stroke(vwb::VelWBVectorStrLine, {{300, 200}}, 12, "#00AA00FF"),
          diagram("ellipse", QRectF(250, 120, 100, 60), 3),
          diagram("arrowLine", QRectF(180, 180, 120, 30), 3),
          diagram("triangle", QRectF(30, 170, 80, 40), 5),
          box<vwb::VelWbVecVideo>(vwb::VelWBVectorStrMedia, QRectF(180, 60, 60, 40)),
          picture};
}

vwb::VectorList pageWithErasers() {
  vwb::VectorList page = pageWithoutErasers();
  page.push_back(stroke(vwb::VelWBVectorStrEraser, {{10, 130}, {390, 130}}, 20));
  page.push_back(stroke(vwb::VelWBVectorStrLine, {{20, 130}, {380, 140}}, 4, "#AA00AAFF"));
  page.push_back(stroke(vwb::VelWBVectorStrEraser, {{380, 5}, {395, 5}}, 5));  // takes nothing
  return page;
}

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage rendered(const QString& path, QSize size) {
  QSvgRenderer renderer(path);
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::black);
  QPainter painter(&image);
  renderer.render(&painter, QRectF(QPointF(), size));
  return image;
}

class Export : public ::testing::Test {
 protected:
  QString at(const std::string& name) const { return QString::fromStdString(folder_.at(name)); }

  vwb::TemporaryFolder folder_;
  QString problem_;
};

TEST_F(Export, PngHoldsThePicture) {
  const QSize size(800, 450);
  ASSERT_TRUE(savePng(at("page.png"), pageWithErasers(), size, problem_)) << qPrintable(problem_);
  const QImage read(at("page.png"));
  EXPECT_EQ(read.convertToFormat(QImage::Format_RGB32), pictureOf(pageWithErasers(), size));
}

TEST_F(Export, SvgLooksLikeThePicture) {
  const QSize size(800, 450);
  for (const vwb::VectorList& page : {pageWithoutErasers(), pageWithErasers()}) {
    ASSERT_TRUE(saveSvg(at("page.svg"), page, size, problem_)) << qPrintable(problem_);
    const QImage picture = pictureOf(page, size);
    const QImage read = rendered(at("page.svg"), size);
    EXPECT_LT(meanDifference(read, picture), 0.8);
    EXPECT_GT(meanDifference(read, pictureOf({}, size)), 3);  // it is not empty
  }
}

TEST_F(Export, FilesOfRandomPagesAreWritten) {
  for (std::uint64_t seed = 0; seed < 20; ++seed) {
    RandomPages pages(seed);
    const vwb::VectorList page = pages.page(20);
    ASSERT_TRUE(saveSvg(at("page.svg"), page, QSize(800, 450), problem_)) << qPrintable(problem_);
    EXPECT_TRUE(QSvgRenderer(at("page.svg")).isValid()) << seed;
    ASSERT_TRUE(savePdf(at("page.pdf"), {page}, QSize(800, 450), problem_)) << qPrintable(problem_);
    EXPECT_TRUE(contentOf(at("page.pdf")).trimmed().endsWith("%%EOF")) << seed;
  }
}

TEST_F(Export, SvgKeepsAsShapesWhatIsNotErased) {
  vwb::VectorList page{stroke(vwb::VelWBVectorStrLine, {{20, 100}, {90, 160}}, 4)};
  const auto embedded = [&] {
    EXPECT_TRUE(saveSvg(at("page.svg"), page, kPixels, problem_));
    return contentOf(at("page.svg")).count("<image");
  };
  EXPECT_EQ(embedded(), 0);
  page.push_back(stroke(vwb::VelWBVectorStrEraser, {{300, 20}, {350, 20}}, 20));
  EXPECT_EQ(embedded(), 0);  // it takes nothing away
  page.push_back(stroke(vwb::VelWBVectorStrEraser, {{20, 100}, {350, 100}}, 20));
  EXPECT_EQ(embedded(), 1);
  const auto pathsBefore = contentOf(at("page.svg")).count("<path");
  page.push_back(stroke(vwb::VelWBVectorStrLine, {{20, 100}, {90, 160}}, 4));
  EXPECT_EQ(embedded(), 1);
  EXPECT_GT(contentOf(at("page.svg")).count("<path"), pathsBefore);
}

TEST_F(Export, PdfHasASheetForEachPage) {
  const std::vector<vwb::VectorList> pages{pageWithoutErasers(), {}, pageWithErasers()};
  ASSERT_TRUE(savePdf(at("pages.pdf"), pages, QSize(800, 450), problem_)) << qPrintable(problem_);
  const QByteArray content = contentOf(at("pages.pdf"));
  EXPECT_TRUE(content.startsWith("%PDF"));
  EXPECT_EQ(content.count("/Type /Page\n"), 3);
  EXPECT_EQ(content.count("/MediaBox [0 0 832.000000 468.000000]"), 3) << "not 16:9";
  EXPECT_TRUE(content.trimmed().endsWith("%%EOF"));
  EXPECT_FALSE(savePdf(at("none.pdf"), {}, QSize(800, 450), problem_));
  EXPECT_FALSE(QFile::exists(at("none.pdf")));
}

TEST_F(Export, FilesThatCannotBeWrittenAreReported) {
  const vwb::VectorList page = pageWithoutErasers();
  const auto expectFailure = [&](bool isSaved, const QString& path) {
    EXPECT_FALSE(isSaved);
    EXPECT_TRUE(problem_.contains(path)) << qPrintable(problem_);
    EXPECT_GT(problem_.size(), path.size() + 15) << "without a reason";
    problem_.clear();
  };
  const QString missing = at("missing/page");
  expectFailure(savePng(missing, page, kPixels, problem_), missing);
  expectFailure(saveSvg(missing, page, kPixels, problem_), missing);
  expectFailure(savePdf(missing, {page}, kPixels, problem_), missing);
  expectFailure(savePng(at("page"), page, QSize(0, 0), problem_), at("page"));
  expectFailure(saveSvg(at("page"), page, QSize(0, 0), problem_), at("page"));
  expectFailure(savePdf(at("page"), {page}, QSize(0, 0), problem_), at("page"));
  EXPECT_FALSE(QFile::exists(at("page")));
}

/// As long as it lives, no file of this process gets longer than `bytes`.
class FileLimit {
 public:
  explicit FileLimit(rlim_t bytes) {
    ::getrlimit(RLIMIT_FSIZE, &before_);
    const rlimit limit{bytes, before_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
    handler_ = std::signal(SIGXFSZ, SIG_IGN);  // so that writing fails instead
  }
  ~FileLimit() {
    ::setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, handler_);
  }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;

 private:
  rlimit before_{};
  void (*handler_)(int) = nullptr;
};

TEST_F(Export, AFullDiskIsReportedAndLeavesTheEarlierFile) {
  const vwb::VectorList page = pageWithErasers();
  const std::vector<QString> paths{at("page.png"), at("page.svg"), at("page.pdf")};
  ASSERT_TRUE(savePng(paths[0], page, kPixels, problem_));
  ASSERT_TRUE(saveSvg(paths[1], page, kPixels, problem_));
  ASSERT_TRUE(savePdf(paths[2], {page}, kPixels, problem_));
  std::vector<QByteArray> before;
  for (const QString& path : paths) before.push_back(contentOf(path));
  {
    const FileLimit limit(1000);
    EXPECT_FALSE(savePng(paths[0], page, kPixels, problem_));
    EXPECT_FALSE(problem_.isEmpty());
    problem_.clear();
    EXPECT_FALSE(saveSvg(paths[1], page, kPixels, problem_));
    EXPECT_FALSE(problem_.isEmpty());
    problem_.clear();
    EXPECT_FALSE(savePdf(paths[2], {page}, kPixels, problem_));
    EXPECT_FALSE(problem_.isEmpty());
  }
  for (std::size_t i = 0; i < paths.size(); ++i) EXPECT_EQ(contentOf(paths[i]), before[i]);
}

}  // namespace
}  // namespace whiteboard
