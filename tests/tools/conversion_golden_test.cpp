// Every row of the golden table, bit for bit: see tests/golden/conversion_golden.py.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/fresh_tool_manager.h"

namespace VelWhiteBoard {
namespace {

using Numbers = std::vector<double>;

struct Row {
  std::string line;
  std::string operation;
  std::string version;
  std::string className;
  Numbers given;
  Numbers expected;
};

/// A number in the hexadecimal notation of C, or inf.
double number(const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  EXPECT_TRUE(!text.empty() && end == text.data() + text.size()) << text;
  return value;
}

std::vector<Row> rowsOfTheTable() {
  std::ifstream file(VELWB_TEST_DATA_DIR "/../golden/conversion_golden.txt");
  EXPECT_TRUE(file.is_open());
  std::vector<Row> rows;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with('#')) continue;
    Row row;
    row.line = line;
    std::istringstream fields(line);
    fields >> row.operation >> row.version >> row.className;
    Numbers* numbers = &row.given;
    for (std::string field; fields >> field;) {
      if (field == "->") {
        numbers = &row.expected;
      } else {
        numbers->push_back(number(field));
      }
    }
    rows.push_back(row);
  }
  return rows;
}

std::shared_ptr<VelWbVecPoint> vectorOfClass(const std::string& name) {
  const RecordClass* const classes[] = {
      &VelWbVecPoint::ownClass(),    &VelWbVecLine::ownClass(),    &VelWbVecSquare::ownClass(),
      &VelWbVecFile::ownClass(),     &VelWbVecVideo::ownClass(),   &VelWbVecText::ownClass(),
      &VelWbCaptureInfo::ownClass(), &VelWbVecDiagram::ownClass(), &VelWbVecCircle::ownClass()};
  for (const RecordClass* each : classes) {
    if (each->name == name) return std::static_pointer_cast<VelWbVecPoint>(each->create());
  }
  ADD_FAILURE() << "no vector class " << name;
  return std::make_shared<VelWbVecPoint>();
}

bool isSameBits(double left, double right) {
  return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

class ConversionGolden : public FreshToolManager {
 protected:
  /// Runs the table's rows of one operation; fails with each row that came out otherwise.
  void check(const std::string& operation, std::size_t count,
             const std::function<Numbers(const Row&)>& convert) {
    std::size_t rows = 0;
    for (const Row& row : rowsOfTheTable()) {
      if (row.operation != operation) continue;
      ++rows;
      if (row.version != "-") manager.setVersion(std::stoull(row.version));
      if (row.version != "-") manager.setWbSize({row.given.at(0), row.given.at(1)});
      const Numbers result = convert(row);
      ASSERT_EQ(result.size(), row.expected.size()) << row.line;
      for (std::size_t i = 0; i < result.size(); ++i) {
        EXPECT_TRUE(isSameBits(result[i], row.expected[i]))
            << row.line << "\noutput " << i << " is " << std::hexfloat << result[i];
      }
    }
    EXPECT_EQ(rows, count);
  }

  /// The same, by the form that takes the board's size; the manager's own must play no part in it.
  template <class Convert>
  Numbers withOtherBoard(const Row& row, Convert convert) {
    manager.setWbSize({17, 3});
    const Numbers result = convert(Size{row.given[0], row.given[1]});
    manager.setWbSize({row.given[0], row.given[1]});
    return result;
  }
};

TEST_F(ConversionGolden, ConvertPoint) {
  check("convertPoint", 540, [](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    if (auto* box = recordCast<VelWbVecSquare>(vector.get())) box->h = row.given[4];
    VWBToolManager::convertPoint({row.given[2], row.given[3]}, *vector);
    return Numbers{vector->x, vector->y};
  });
}

TEST_F(ConversionGolden, ConvertSize) {
  check("convertSize", 336, [](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    auto& box = static_cast<VelWbVecSquare&>(*vector);
    VWBToolManager::convertSize({row.given[2], row.given[3]}, box);
    return Numbers{box.w, box.h};
  });
}

TEST_F(ConversionGolden, ConvertPointAndSize) {
  check("convertPointAndSize", 336, [](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    auto& box = static_cast<VelWbVecSquare&>(*vector);
    const auto& given = row.given;
    VWBToolManager::convertPoint({given[2], given[3]}, {given[4], given[5]}, box);
    return Numbers{box.x, box.y, box.w, box.h};
  });
}

TEST_F(ConversionGolden, ConvertPointToScale) {
  check("convertPointToScale", 276, [](const Row& row) {
    const Point point = VWBToolManager::convertPointToScale({row.given[2], row.given[3]});
    return Numbers{point.x, point.y};
  });
}

TEST_F(ConversionGolden, ConvertPointScaleToPoint) {
  check("convertPointScaleToPoint", 540, [this](const Row& row) {
    const Point scale{row.given[2], row.given[3]};
    const Point point = VWBToolManager::convertPointScaleToPoint(scale);
    const Numbers result{point.x, point.y};
    EXPECT_EQ(withOtherBoard(row,
                             [&](Size board) {
                               const Point other =
                                   VWBToolManager::convertPointScaleToPoint(scale, board);
                               return Numbers{other.x, other.y};
                             }),
              result)
        << row.line;
    return result;
  });
}

TEST_F(ConversionGolden, ConvertVectorToPoint) {
  check("convertVectorToPoint", 432, [this](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    vector->x = row.given[2];
    vector->y = row.given[3];
    if (auto* box = recordCast<VelWbVecSquare>(vector.get())) box->h = row.given[4];
    const Point point = VWBToolManager::convertVectorToPoint(*vector);
    const Numbers result{point.x, point.y};
    EXPECT_EQ(withOtherBoard(row,
                             [&](Size board) {
                               const Point other =
                                   VWBToolManager::convertVectorToPoint(*vector, board);
                               return Numbers{other.x, other.y};
                             }),
              result)
        << row.line;
    return result;
  });
}

TEST_F(ConversionGolden, ConvertVectorToNSRect) {
  check("convertVectorToNSRect", 336, [this](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    auto& box = static_cast<VelWbVecSquare&>(*vector);
    box.x = row.given[2];
    box.y = row.given[3];
    box.w = row.given[4];
    box.h = row.given[5];
    const auto numbers = [](const Rect& rect) {
      return Numbers{rect.origin.x, rect.origin.y, rect.size.width, rect.size.height};
    };
    const Numbers result = numbers(VWBToolManager::convertVectorToNSRect(box));
    EXPECT_EQ(withOtherBoard(row,
                             [&](Size board) {
                               return numbers(VWBToolManager::convertVectorToNSRect(box, board));
                             }),
              result)
        << row.line;
    return result;
  });
}

TEST_F(ConversionGolden, CoordinateSystemTransFromPC) {
  check("coordinateSystemTransFromPC", 234, [](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    vector->x = row.given[0];
    vector->y = row.given[1];
    VelWbVectorManager::shareManager().coordinateSystemTransFromPC(*vector);
    return Numbers{vector->x, vector->y};
  });
}

TEST_F(ConversionGolden, CoordinateSystemTransToPC) {
  check("coordinateSystemTransToPC", 234, [](const Row& row) {
    const auto vector = vectorOfClass(row.className);
    vector->x = row.given[0];
    vector->y = row.given[1];
    VelWbVectorManager::shareManager().coordinateSystemTransToPC(*vector);
    return Numbers{vector->x, vector->y};
  });
}

}  // namespace
}  // namespace VelWhiteBoard
