#include "window/toolbox.h"

#include <QLabel>
#include <QSpinBox>
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <utility>
#include <vector>

#include "window/icons.h"
#include "window/tools/shape_tool.h"
#include "window/tools/show_tool.h"
#include "window/tools/stroke_tool.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

/// The palette's dark one: most is written with it.
constexpr std::size_t kFirstColour = 5;

vwb::VWBToolManager& settingsOfTools() { return vwb::VWBToolManager::sharedManager(); }

QToolBar* newBar(const QString& title, QWidget* parent) {
  auto* bar = new QToolBar(title, parent);
  bar->setMovable(false);
  bar->setIconSize({24, 24});
  return bar;
}

}  // namespace

Toolbox::Toolbox(Session& session, BoardView& view, QWidget* parent)
    : session_(session),
      view_(view),
      tools_(newBar(tr("Tools"), parent)),
      settings_(newBar(tr("Colours and widths"), parent)),
      group_(this) {
  tools_->setOrientation(Qt::Vertical);
  const auto stroke = [&](std::uint64_t tool) {
    return std::make_unique<StrokeTool>(session_, view_, tool);
  };
  const auto shape = [&](std::string_view kind) {
    return std::make_unique<ShapeTool>(session_, view_, std::string(kind));
  };
  auto text = std::make_unique<TextTool>(session_, view_);
  auto select = std::make_unique<SelectTool>(session_, view_,
                                             [this, writing = text.get()](const std::string& ID) {
                                               take("Text");
                                               writing->edit(ID);
                                             });

  add("Select", iconOf(Sign::kSelect), "S", std::move(select));
  tools_->addSeparator();
  add("Pen", iconOf(Sign::kPen), "P", stroke(vwb::VelWBToolLine));
  add("Marker", iconOf(Sign::kMarker), "M", stroke(vwb::VelWBToolMarkerPen));
  add("Eraser", iconOf(Sign::kEraser), "E", stroke(vwb::VelWBToolEraser));
  add("Text", iconOf(Sign::kText), "T", std::move(text));
  tools_->addSeparator();
  add("Rectangle", iconOf(Sign::kRectangle), "R", shape(vwb::VelWBVectorStrKindRectangle));
  add("Circle", iconOf(Sign::kCircle), "C", shape(vwb::VelWBVectorStrKindCircle));
  add("Ellipse", iconOf(Sign::kEllipse), "O", shape(vwb::VelWBVectorStrKindEllipse));
  add("Triangle", iconOf(Sign::kTriangle), "3", shape(vwb::VelWBVectorStrKindTriangle));
  add("Rhombus", iconOf(Sign::kRhombus), "4", shape(vwb::VelWBVectorStrKindRhombus));
  add("Line", iconOf(Sign::kLine), "L", shape(vwb::VelWBVectorStrKindLine));
  add("Arrow", iconOf(Sign::kArrow), "A", shape(vwb::VelWBVectorStrKindArrowLine));
  tools_->addSeparator();
  add("Pointer", iconOf(Sign::kPointer), "I",
      std::make_unique<ShowTool>(session_, view_, vwb::VelWBVectorTypeCursor));
  add("Magnifier", iconOf(Sign::kMagnifier), "G",
      std::make_unique<ShowTool>(session_, view_, vwb::VelWBVectorTypeMagnifier));

  addColours();
  addWidths();
  addFontSize();
  take("Pen");
}

Toolbox::~Toolbox() { view_.setTool(nullptr); }

QAction* Toolbox::action(const std::string& name) const {
  const auto found = actions_.find(name);
  return found == actions_.end() ? nullptr : found->second;
}

void Toolbox::take(const std::string& name) {
  if (QAction* taken = action(name)) taken->trigger();
}

QAction* Toolbox::add(const std::string& name, const QIcon& icon, const QString& keys,
                      std::unique_ptr<Tool> tool) {
  const QString title = QString::fromStdString(name);
  QAction* added = tools_->addAction(icon, title);
  added->setCheckable(true);
  added->setShortcut(QKeySequence(keys));
  added->setToolTip(QString("%1 (%2)").arg(title, keys));
  group_.addAction(added);
  actions_[name] = added;
  connect(added, &QAction::triggered, this, [this, taken = tool.get()] { view_.setTool(taken); });
  owned_.push_back(std::move(tool));
  return added;
}

void Toolbox::addColours() {
  auto* group = new QActionGroup(this);
  const std::vector<std::string>& palette = settingsOfTools().colorArr();
  for (std::size_t i = 0; i < palette.size(); ++i) {
    const QString name = QString::fromStdString(palette[i]);
    QAction* added = settings_->addAction(colourIcon(QColor(name)), tr("Colour %1").arg(i + 1));
    added->setCheckable(true);
    added->setShortcut(QKeySequence(QString("Ctrl+%1").arg(i + 1)));
    added->setToolTip(QString("%1 (Ctrl+%2)").arg(name).arg(i + 1));
    group->addAction(added);
    connect(added, &QAction::triggered, this, [this, i] { setColour(static_cast<int>(i)); });
    if (i == kFirstColour) added->trigger();
  }
  settings_->addSeparator();
}

void Toolbox::setColour(int index) {
  vwb::VWBToolManager& settings = settingsOfTools();
  const std::string colour = settings.colorArr()[static_cast<std::size_t>(index)];
  settings.setLineColor(colour);
  settings.setMarkerColor(colour);
  settings.setDiagramColor(colour);
  settings.setTextColor(colour);
}

void Toolbox::addWidths() {
  auto* group = new QActionGroup(this);
  const auto count = static_cast<int>(settingsOfTools().lineWidthArr().size());
  for (int i = 0; i < count; ++i) {
    const double part = count < 2 ? 0 : static_cast<double>(i) / (count - 1);
    QAction* added = settings_->addAction(widthIcon(part), tr("Width %1").arg(i + 1));
    added->setCheckable(true);
    added->setShortcut(QKeySequence(QString("Alt+%1").arg(i + 1)));
    added->setToolTip(tr("Width %1 (Alt+%1)").arg(i + 1));
    group->addAction(added);
    connect(added, &QAction::triggered, this, [this, i] { setWidth(i); });
    if (i == 0) added->trigger();
  }
  settings_->addSeparator();
}

void Toolbox::setWidth(int index) {
  vwb::VWBToolManager& settings = settingsOfTools();
  settings.setLineWidthIndex(index);
  settings.setDiagramWidthIndex(index);
  settings.setMarkerWidthIndex(index);
}

void Toolbox::addFontSize() {
  const vwb::VWBToolManager& settings = settingsOfTools();
  auto* size = new QSpinBox(settings_);
  size->setRange(static_cast<int>(settings.textFontMinSize()),
                 static_cast<int>(settings.textFontMaxSize()));
  size->setSuffix(tr(" pt"));
  size->setToolTip(tr("Size of new texts, on a board that is 400 points wide"));
  size->setFocusPolicy(Qt::ClickFocus);
  connect(size, &QSpinBox::valueChanged, this,
          [](int points) { settingsOfTools().setTextFontSize(points); });
  constexpr int kUsualSize = 14;
  size->setValue(kUsualSize);
  settings_->addWidget(size);
}

}  // namespace whiteboard
