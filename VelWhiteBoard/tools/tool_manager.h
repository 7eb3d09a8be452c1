/// @file
/// The current tool and its settings, the factory of new vectors, coordinate conversion.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/values/geometry.h"
#include "VelWhiteBoard/tools/tool_defines.h"

namespace VelWhiteBoard {

class VelWbBaseVector;
class VelWbVecPoint;
class VelWbVecSquare;
using VectorPtr = std::shared_ptr<VelWbBaseVector>;

/// The drawing side's current settings, the factory that makes new vectors from them, and the
/// conversions between the view's points and the board's normalised coordinates.
///
/// One object serves the whole process. It is made on first use and never destroyed; no second
/// `VWBToolManager` can exist. Most operations exist twice: a class operation for callers, and an
/// instance twin with a leading underscore that holds the logic.
///
/// Threads: the first access may come from any thread, and `version()` may be read from any thread
/// at any time. All other operations and properties take no lock; callers must use them on one
/// thread. Asking a stroke or diagram for its `lineWidth` reads these settings too.
///
/// An invalid setting is ignored without a report and the old value stays. Apart from
/// std::bad_alloc only these throw, and change nothing then: the look-ups of widths and colours,
/// and the factory for the types "line", "eraser", "markerPen" and "diagram", std::out_of_range
/// when an index equals the length of its table; `setTextColor` std::invalid_argument when the
/// colour is absent.
///
/// Not meant as a base class.
/// @ingroup tools
class VELWHITEBOARD_EXPORT VWBToolManager {
 public:
  /// @name The one object
  /// @{

  /// The shared object, made on the first call. Safe from any thread.
  static VWBToolManager& sharedManager();
  /// The same object: an allocation never yields a second one.
  static VWBToolManager& allocWithZone();

  /// Resets every property to its initial value, `version` and the board sizes included.
  VWBToolManager& init();
  VWBToolManager& copy();         ///< The receiver itself: there is only one object.
  VWBToolManager& mutableCopy();  ///< The receiver itself.

  VWBToolManager(const VWBToolManager&) = delete;
  VWBToolManager(VWBToolManager&&) = delete;
  VWBToolManager& operator=(const VWBToolManager&) = delete;
  VWBToolManager& operator=(VWBToolManager&&) = delete;

  /// @}
  /// @name Settings
  /// @{

  /// Restores what the user chooses: the colours, the width indexes, `tool`, `textFontSize`, the
  /// page and board counters. `version`, the board sizes, `markerColorAlpha` and the tables stay.
  static void setToDefault();
  void _setToDefault();  ///< Instance twin of `setToDefault`.

  /// The palette: seven colours of the form `#RRGGBB` in upper case. Lives as long as the process.
  const std::vector<std::string>& colorArr() const;

  /// The width tables, in points of the base board size:
  ///
  /// | table | at `version` 1 | at any other |
  /// |---|---|---|
  /// | pen and diagrams | 2, 4, 6, 8, 10 | 2, 4, 7 |
  /// | marker | 16, 30, 44, 58, 72 | 8, 14, 20 |
  /// | eraser | 20 | 20 |
  ///
  /// Tables never change: a reference from before `setVersion` stays valid, to the old table.
  const std::vector<double>& lineWidthArr() const;
  const std::vector<double>& markerWidthArr() const;  ///< The marker's row of the table.
  const std::vector<double>& eraserWidthArr() const;  ///< The eraser's row of the table.

  double textFontMaxSize() const;              ///< 72.0, in view points
  double textFontMinSize() const;              ///< 8.0, in view points
  std::uint64_t whiteBoardTotalCount() const;  ///< 10; stored for the host, never checked here

  /// Which of the two generations of widths and coordinate rules is in force. 1 selects the width
  /// tables of five entries, "Arial" for new text, tool 3 as remove, the far-edge rule of boxes and
  /// the media clock for timestamps; any other value selects none of them. Initially 0. This getter
  /// alone is safe from any thread.
  std::uint64_t version() const;
  /// Stores the version and selects the pen and marker width tables. The width indexes stay as they
  /// are, even if the new table is too short for them; then the lookups give entry 0 or throw.
  void setVersion(std::uint64_t version);

  /// The board's current size in view points. Used by every conversion that takes no size, and by
  /// the `ps` of new text. Initially {400, 225}.
  Size wbSize() const;
  void setWbSize(Size wbSize);  ///< Stores any value.

  /// The board's reference size, for which the width tables hold. Gives the `ps` of new strokes and
  /// diagrams. Initially {400, 225}.
  Size wbBaseSize() const;
  void setWbBaseSize(Size wbBaseSize);  ///< Stores any value.

  /// The active tool, a number; the table at `genVectorWithTool` says what each makes. Initially
  /// `VelWBToolNone`, which makes nothing.
  std::uint64_t tool() const;
  void setTool(std::uint64_t tool);  ///< Stores any value.

  /// Index into `lineWidthArr`, initially 1.
  std::int64_t lineWidthIndex() const;
  void setLineWidthIndex(std::int64_t lineWidthIndex);  ///< Ignores an index outside the table.

  /// Index into `lineWidthArr`, too: diagrams draw with the line widths. Initially 1.
  std::int64_t diagramWidthIndex() const;
  /// Ignores an index outside the table.
  void setDiagramWidthIndex(std::int64_t diagramWidthIndex);

  /// Index into `markerWidthArr`, initially 1.
  std::int64_t markerWidthIndex() const;
  /// Stores any value, unlike its siblings.
  void setMarkerWidthIndex(std::int64_t markerWidthIndex);

  /// Index into `eraserWidthArr`, initially 0.
  std::int64_t eraserWidthIndex() const;
  /// Ignores an index outside the table.
  void setEraserWidthIndex(std::int64_t eraserWidthIndex);

  /// The size of new text in view points, initially 20.
  double textFontSize() const;
  /// Ignores NaN and what is outside `textFontMinSize` to `textFontMaxSize`, both included.
  void setTextFontSize(double textFontSize);

  std::uint64_t currentPage() const;               ///< Only stored, for the host; initially 1.
  void setCurrentPage(std::uint64_t currentPage);  ///< Any value, above `totalPage` too.
  std::uint64_t totalPage() const;                 ///< Only stored, for the host; initially 1.
  void setTotalPage(std::uint64_t totalPage);      ///< Stores any value.
  std::uint64_t whiteBoardCount() const;           ///< Only stored, for the host; initially 1.
  void setWhiteBoardCount(std::uint64_t whiteBoardCount);  ///< Any value, 0 too.

  /// @}
  /// @name Widths and limits
  /// @{

  /// The entry of `lineWidthArr`, as a single-precision number widened to double. A negative index
  /// and one above the table's length give entry 0.
  /// @throws std::out_of_range when the index equals the table's length. Hosts rely on this
  /// behaviour. An index above the length does not throw.
  static double lineWidth(std::int64_t index);
  static double markerWidth(std::int64_t index);  ///< As `lineWidth`, from `markerWidthArr`.
  static double eraserWidth(std::int64_t index);  ///< As `lineWidth`, from `eraserWidthArr`.
  double _lineWidth(std::int64_t index) const;    ///< Instance twin of `lineWidth`.
  double _markerWidth(std::int64_t index) const;  ///< Instance twin of `markerWidth`.
  double _eraserWidth(std::int64_t index) const;  ///< Instance twin of `eraserWidth`.

  /// The minimum height in points of text of this font size: 23 at size 20, and 1.2 more for each
  /// point of font size.
  static double textLimitHeight(double fontSize);
  /// 10, in view points. For the client's use; the library does not read it.
  static double imageLimitSize();

  /// @}
  /// @name Colours
  /// A colour is stored with six digits and returned with eight: `#RRGGBB` and its alpha. Vectors
  /// hold the returned form. No colour string is cut inside a Unicode code point, so valid UTF-8
  /// stays valid, and bytes that are not UTF-8 do not change. Only the ASCII letters change case.
  /// @{

  /// The colour of new text in the returned form: the first six digits of the stored colour, then
  /// "FF", all in upper case. Initially the first palette entry, so `#FF3467FF`.
  std::string textColor() const;
  std::string lineColor() const;     ///< The same for the strokes of the pen.
  std::string diagramColor() const;  ///< The same for the outlines of diagrams.
  /// The same for the background of text; absent when there is none, as initially.
  std::optional<std::string> textBgColor() const;
  /// The marker's colour in the returned form: the stored colour in its stored case, then the alpha
  /// in two lower-case digits. Initially `#FF34675e`.
  std::string markerColor() const;

  /// Accepts any colour: a missing "#" is added, an opaque alpha is removed, and the rest is stored
  /// in upper case.
  /// @throws std::invalid_argument when it is absent; the stored colour stays.
  void setTextColor(const std::optional<std::string>& textColor);
  /// As `setTextColor`, but an absent colour clears the background.
  void setTextBgColor(const std::optional<std::string>& textBgColor);

  /// Accepts only a string that equals a palette entry and ignores everything else: lower case, an
  /// absent colour, and the eight-digit form that the getters return.
  void setLineColor(const std::optional<std::string>& lineColor);
  void setDiagramColor(const std::optional<std::string>& diagramColor);  ///< As `setLineColor`.
  void setMarkerColor(const std::optional<std::string>& markerColor);    ///< As `setLineColor`.

  double markerColorAlpha() const;  ///< The alpha of `markerColor`, 0 to 1, initially 0.37.
  /// Stores any value: above 1 the colour is opaque, below 0 and for NaN it is transparent.
  void setMarkerColorAlpha(double markerColorAlpha);

  /// The palette entry at the index. A negative index and one above the palette's length give the
  /// first entry.
  /// @throws std::out_of_range when the index equals the palette's length, as for the widths.
  static std::string colorStringWithIndex(std::int64_t index);
  std::string _colorStringWithIndex(std::int64_t index) const;  ///< Instance twin.

  /// The index of the first palette entry with which the colour begins. The leading "#" may be
  /// missing and alpha digits may follow, but the case must be the palette's. 0 when no entry
  /// matches, as for the first entry.
  static std::int64_t indexOfColor(const std::string& color);
  std::int64_t _indexOfColor(const std::string& color) const;  ///< Instance twin.

  /// @}
  /// @name Vector factory
  /// Each call returns a new vector that belongs to the caller, stamped by the vector manager with
  /// a timestamp and, unless the caller gives one, an ID (an empty ID is kept). It has the current
  /// settings; colours are in the returned form. A type or tool that makes no vector gives a null
  /// pointer, and still takes a timestamp and an ID from the vector manager. For "line", "eraser",
  /// "markerPen" and "diagram" they throw std::out_of_range when the tool's width index equals the
  /// length of its table, which a change of `version` can cause (and, for the marker, its setter);
  /// then no timestamp and no ID has been taken.
  /// @{

  /// The vector that a tool starts; `tool_defines.h` has a name for each number:
  ///
  /// | tool | vector |
  /// |---|---|
  /// | 1 | "line" |
  /// | 2 | "cursor" |
  /// | 3 | "eraser" at `version` 0, "remove" at `version` 1, nothing at any other |
  /// | 4 | "text" |
  /// | 6 | "remove" |
  /// | 7 | "image" |
  /// | 8 | "camera" |
  /// | 9 | "clear" |
  /// | 11 | "markerPen" |
  /// | 13 | "media" |
  /// | other | nothing |
  static VectorPtr genVectorWithTool(std::uint64_t tool);
  /// The same with an ID of the caller's; an absent one is generated.
  static VectorPtr genVectorWithTool(std::uint64_t tool, const std::optional<std::string>& ID);
  /// Instance twin of `genVectorWithTool`.
  VectorPtr _genVectorWithTool(std::uint64_t tool, const std::optional<std::string>& ID);

  /// The vector of a type code, `VelWBVectorTypeCursor` to `VelWBVectorTypeOffset`.
  static VectorPtr genVectorWithType(std::uint64_t type);
  /// The same with an ID of the caller's; an absent one is generated.
  static VectorPtr genVectorWithType(std::uint64_t type, const std::optional<std::string>& ID);
  /// The same for any `kind` of diagram (type 15; not read for other types): "circle" and "ellipse"
  /// make a `VelWbVecCircle`, everything else, an absent kind included, a `VelWbVecDiagram`. All
  /// other forms call this one.
  VectorPtr genVectorWithType(std::uint64_t type, const std::optional<std::string>& ID,
                              const std::optional<std::string>& kind);
  /// A diagram of the kind, with a generated ID.
  static VectorPtr genDiagramWithKind(const std::optional<std::string>& kind);

  /// @}
  /// @name Coordinate conversion
  /// View points: the origin is a corner of the board, and the board is as wide and high as the
  /// argument `wbSize` says, or, where there is none, the property of that name. Normalised
  /// coordinates: the origin is the board's centre, -0.5 to +0.5 across its width and its height, y
  /// growing with the view's y; a width or height is a fraction of the board's. Positions outside
  /// the board are converted like any other, without clamping.
  ///
  /// What is written into a vector, and what `convertPointToScale` returns, is cut to five decimals
  /// toward zero. The formulas are evaluated in double precision exactly as they stand, so that all
  /// clients agree to the last bit. A board size that is zero, negative or not finite gives
  /// meaningless values but no error. Values too large to cut are limited to about 9.2e13, and NaN
  /// becomes 0.
  /// @{

  /// Writes the view point into the vector's `x` and `y`. At `version` 1 a box gets the y of its
  /// far edge, so its `h` must be set before.
  static void convertPoint(Point point, VelWbVecPoint& toVector);
  /// The same on a board of that size.
  static void convertPoint(Point point, VelWbVecPoint& toVector, Size wbSize);
  /// Writes the view size into the box's `w` and `h`.
  static void convertSize(Size size, VelWbVecSquare& toVector);
  /// The same on a board of that size.
  static void convertSize(Size size, VelWbVecSquare& toVector, Size wbSize);
  /// Writes the size, then the point, so that the far edge of `version` 1 is that of the new size.
  static void convertPoint(Point point, Size size, VelWbVecSquare& toVector);
  /// The same on a board of that size.
  static void convertPoint(Point point, Size size, VelWbVecSquare& toVector, Size wbSize);
  void _convertPoint(Point point, VelWbVecPoint& toVector) const;               ///< Instance twin.
  void _convertPoint(Point point, VelWbVecPoint& toVector, Size wbSize) const;  ///< Instance twin.
  void _convertSize(Size size, VelWbVecSquare& toVector) const;                 ///< Instance twin.
  void _convertSize(Size size, VelWbVecSquare& toVector, Size wbSize) const;    ///< Instance twin.

  /// The view point at which the vector lies. At `version` 1 a box gives its near edge: its `h` is
  /// subtracted.
  static Point convertVectorToPoint(const VelWbVecPoint& vector);
  /// The same on a board of that size.
  static Point convertVectorToPoint(const VelWbVecPoint& vector, Size wbSize);
  Point _convertVectorToPoint(const VelWbVecPoint& vector, Size wbSize) const;  ///< Instance twin.

  /// The view point of a normalised position, such as an element of a stroke's `path`.
  static Point convertPointScaleToPoint(Point point);
  static Point convertPointScaleToPoint(Point point, Size wbSize);  ///< On a board of that size.
  Point _convertPointScaleToPoint(Point point, Size wbSize) const;  ///< Instance twin.

  /// The normalised position of a view point: what `convertPoint` writes into a vector that is not
  /// a box.
  static Point convertPointToScale(Point point);
  static Point convertPointToScale(Point point, Size wbSize);  ///< On a board of that size.
  Point _convertPointToScale(Point point) const;               ///< Instance twin.
  Point _convertPointToScale(Point point, Size wbSize) const;  ///< Instance twin.

  /// The rectangle in view points that the box covers.
  static Rect convertVectorToNSRect(const VelWbVecSquare& vector);
  /// The same on a board of that size.
  static Rect convertVectorToNSRect(const VelWbVecSquare& vector, Size wbSize);
  /// Instance twin of `convertVectorToNSRect`.
  Rect _convertVectorToNSRect(const VelWbVecSquare& vector, Size wbSize) const;

  /// @}

 private:
  /// What `setToDefault` restores. The colours are in their stored form.
  struct UserSettings {
    std::string markerColor;
    std::string textColor;
    std::optional<std::string> textBgColor;
    std::string lineColor;
    std::string diagramColor;
    std::int64_t lineWidthIndex = 1;
    std::int64_t diagramWidthIndex = 1;
    std::int64_t markerWidthIndex = 1;
    std::int64_t eraserWidthIndex = 0;
    std::uint64_t tool = VelWBToolNone;
    double textFontSize = 20.0;
    std::uint64_t currentPage = 1;
    std::uint64_t totalPage = 1;
    std::uint64_t whiteBoardCount = 1;
  };

  static constexpr double kMarkerColorAlpha = 0.37;

  VWBToolManager();
  ~VWBToolManager() = default;

  bool isPaletteColor(const std::optional<std::string>& color) const;
  VectorPtr unstampedVector(std::uint64_t type, const std::optional<std::string>& kind) const;

  UserSettings user_;
  /// Only `init` restores this, like the settings in `DrawingSettings`.
  double markerColorAlpha_ = kMarkerColorAlpha;
};

}  // namespace VelWhiteBoard
