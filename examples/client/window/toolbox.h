// The tools, and what they are set to.
#pragma once

#include <QAction>
#include <QActionGroup>
#include <QObject>
#include <QSpinBox>
#include <QToolBar>
#include <map>
#include <memory>
#include <string>

#include "lesson/session.h"
#include "window/board_view.h"
#include "window/tools/select_tool.h"
#include "window/tools/text_tool.h"
#include "window/tools/tool.h"

namespace whiteboard {

/// Makes the tools of a session and the bars from which one is taken and set.
class Toolbox : public QObject {
  Q_OBJECT

 public:
  Toolbox(Session& session, BoardView& view, QWidget* parent);
  ~Toolbox() override;

  QToolBar* tools() const { return tools_; }
  QToolBar* settings() const { return settings_; }
  /// The action that takes a tool, by its name, for example "Pen"; null when there is none.
  QAction* action(const std::string& name) const;
  void take(const std::string& name);

 private:
  QAction* add(const std::string& name, const QIcon& icon, const QString& keys,
               std::unique_ptr<Tool> tool);
  void addColours();
  void addWidths();
  void addFontSize();
  void setColour(int index);
  void setWidth(int index);

  Session& session_;
  BoardView& view_;
  QToolBar* tools_;
  QToolBar* settings_;
  QActionGroup group_;
  std::map<std::string, QAction*> actions_;
  std::vector<std::unique_ptr<Tool>> owned_;
};

}  // namespace whiteboard
