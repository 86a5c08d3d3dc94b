// The text reader and the point set it fills, in process: what it accepts,
// where each point came from, and the exact message of every fault.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quadrel/io/point_set.h"
#include "quadrel/io/read_error.h"
#include "quadrel/io/read_points.h"
#include "quadrel/io/text_reader.h"

namespace {

using quadrel_io::ParsePointText;
using quadrel_io::PointSet;
using quadrel_io::ReadError;

// The error that reading text as name raises (an empty one, and a failure,
// when it raises none).
ReadError Failure(const std::string &text, const std::string &name,
                  const quadrel_io::ReadOptions &options = quadrel_io::kPointColumns) {
  try {
    ParsePointText(text, name, options);
  } catch (const ReadError &error) {
    return error;
  }
  ADD_FAILURE() << "no error for " << text;
  return ReadError("", 0, "");
}

TEST(TextReader, ReadsEveryLayoutWithTheLineOfEachPoint) {
  // Byte order mark, comments, blank lines, a header, commas with blanks
  // round them, tabs, a carriage return, signs and exponents.
  const PointSet set = ParsePointText(
      "\xEF\xBB\xBF# made by hand\n\n  x, y ,z\n+1 -2 3e1\n4,5 , 6\n   # note\n7\t8\t.5\r\n"
      "1e-999 0 -0\n",
      "hand.txt");
  EXPECT_EQ(set.name(), "hand.txt");
  ASSERT_EQ(set.count(), 4);
  const std::vector<double> all(set.coordinates(), set.coordinates() + 12);
  EXPECT_EQ(all, (std::vector<double>{1, 4, 7, 0, -2, 5, 8, 0, 30, 6, 0.5, 0}));
  EXPECT_EQ(set.axis(1), set.coordinates() + 4);
  EXPECT_EQ(set.at(2, 2), 0.5);
  const std::int64_t lines[] = {4, 5, 7, 8};
  for (int k = 0; k < 4; ++k)
    EXPECT_EQ(set.originOf(k), lines[k]) << k;
  EXPECT_EQ(set.originKind(), quadrel_io::OriginKind::kLine);

  // A first line of numbers is a point, not a header; empty text is no point.
  EXPECT_EQ(ParsePointText("1 2 3\n", "n").count(), 1);
  EXPECT_EQ(ParsePointText("", "n").count(), 0);
  // Points as short as they come, none lost at the edge of the room taken.
  const PointSet tight = ParsePointText("1 2 3\n4,5,6\n7 8 9", "t");
  EXPECT_EQ(std::vector<double>(tight.coordinates(), tight.coordinates() + 9),
            (std::vector<double>{1, 4, 7, 2, 5, 8, 3, 6, 9}));
  EXPECT_EQ(ParsePointText("# only\nx y z\n", "n").count(), 0);
}

TEST(TextReader, NamesFileLineAndFaultInEveryMessage) {
  const std::string longWord(45, 'w');
  const struct {
    std::string text;
    std::int64_t line;
    std::string fault;
  } cases[] = {
      {"1 2 3\n4 5\n", 2, "expected 3 numbers (x y z), found 2"},
      {"1 2 3 4\n", 1, "expected 3 numbers (x y z), found 4"},
      {"x y z\n1 2 3\n4 five 6\n", 3, "'five' is not a number"},
      {"1 2 3\nx y z\n", 2, "'x' is not a number"},
      {"1 2 +-3\n", 1, "'+-3' is not a number"},
      {"1 2 nan\n", 1, "'nan' is not a finite number (NaN and infinity are not allowed)"},
      {"# c\n1 -inf 3\n", 2, "'-inf' is not a finite number (NaN and infinity are not allowed)"},
      {"1 2 1e999\n", 1, "'1e999' is too large for a double"},
      {"1,,2,3\n", 1, "empty field before a comma"},
      {",1 2 3\n", 1, "empty field before a comma"},
      {"1 2 3,\n", 1, "empty field after the last comma"},
      {"1 2 3\n" + longWord + " 1 2\n", 2, "'" + longWord.substr(0, 37) + "...' is not a number"},
  };
  for (const auto &c : cases) {
    SCOPED_TRACE(c.text);
    const ReadError error = Failure(c.text, "bad.txt");
    EXPECT_EQ(error.file(), "bad.txt");
    EXPECT_EQ(error.position(), c.line);
    EXPECT_EQ(error.fault(), c.fault);
    EXPECT_EQ(std::string(error.what()), "bad.txt:" + std::to_string(c.line) + ": " + c.fault);
  }
  // The count message names the columns as the caller reads them.
  EXPECT_STREQ(Failure("1 2\n", "s", quadrel_io::kSampleColumns).what(),
               "s:1: expected 3 numbers (x y quality), found 2");
}

TEST(TextReader, ReadsSemicolonsWithDecimalCommasAndNamedColumns) {
  const PointSet semi = ParsePointText("x;y;z\n1,25; 3,5 ;-0,75\n2;1e-3;4,\n", "eu.csv");
  ASSERT_EQ(semi.count(), 2);
  EXPECT_EQ(std::vector<double>(semi.coordinates(), semi.coordinates() + 6),
            (std::vector<double>{1.25, 2, 3.5, 1e-3, -0.75, 4}));
  // A header of more than three words: x, y and z by name, the rest kept.
  const PointSet wide = ParsePointText("label z x y\n7 3 1 2\n8 6 4 5\n", "w");
  EXPECT_EQ(std::vector<double>(wide.coordinates(), wide.coordinates() + 6),
            (std::vector<double>{1, 4, 2, 5, 3, 6}));
  ASSERT_NE(wide.FindColumn("label"), nullptr);
  EXPECT_EQ(wide.FindColumn("label")->values, (std::vector<double>{7, 8}));
  const std::pair<std::string, std::string> faults[] = {
      {"1;2;;3\n", "s:1: empty field before a semicolon"},
      {"1;2;3;\n", "s:1: empty field after the last semicolon"},
      {"1;2;3\n4 5 6\n", "s:2: '4 5 6' is not a number"},
      {"x y z segment\n1 2 3\n", "s:2: expected 4 numbers (x y z segment), found 3"},
      {"1 2 \x01\xff\n", "s:1: '\\x01\\xff' is not a number"},
  };
  for (const auto &[text, message] : faults)
    EXPECT_EQ(Failure(text, "s").what(), message);
}

TEST(ReadPoints, NamesFilesItCannotRead) {
  const std::pair<std::string, std::string> unreadable[] = {
      {"/no/such/file.txt", "cannot open /no/such/file.txt: No such file or directory"},
      {"/", "cannot read /: it is a directory"}};
  for (const auto &[where, message] : unreadable) {
    try {
      quadrel_io::ReadPoints(where);
      ADD_FAILURE() << where;
    } catch (const ReadError &error) {
      EXPECT_EQ(error.what(), message);
      EXPECT_EQ(error.position(), 0);
    }
  }
}

TEST(PointSet, KeepsNamedColumnsOfOneNumberPerPoint) {
  PointSet set = ParsePointText("0 0 0\n1 1 1\n2 2 2\n", "c");
  EXPECT_TRUE(set.AddColumn("label", {1, 1, 2}));
  EXPECT_FALSE(set.AddColumn("label", {3, 3, 3}));   // taken
  EXPECT_FALSE(set.AddColumn("intensity", {1, 2}));  // one short
  // A column made when first asked for, once, from the origins of the points;
  // a copy makes its own.
  int made = 0;
  EXPECT_TRUE(set.AddColumn("line", [&made](const std::vector<std::int64_t> &origins) {
    ++made;
    return std::vector<double>(origins.begin(), origins.end());
  }));
  EXPECT_FALSE(set.AddColumn("line", {0, 0, 0}));  // taken, still to be made
  EXPECT_EQ(made, 0);
  const PointSet copy = set;
  ASSERT_EQ(set.columns().size(), 2u);
  EXPECT_EQ(set.columns()[1].values, (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(copy.FindColumn("line")->values, set.columns()[1].values);
  EXPECT_EQ(made, 2);
  ASSERT_NE(set.FindColumn("label"), nullptr);
  EXPECT_EQ(set.FindColumn("label")->values[2], 2);
  EXPECT_EQ(set.FindColumn("intensity"), nullptr);
}

}  // namespace
