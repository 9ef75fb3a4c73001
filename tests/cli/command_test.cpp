// Usage and input/output errors of every command, and the list and inspect commands, run as a
// user would run them.
#include "command_test.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace tessaline::testing {
namespace {

using Json = nlohmann::ordered_json;

// Exit status 2, nothing on standard output and one line on standard error naming the problem.
TEST_F(CommandTest, UsageErrorsExitTwoWithOneLine) {
  write("a-file", "x");
  fs::create_directories(dir_ / "folder");
  const std::pair<std::vector<std::string>, std::string> cases[] = {
      {{"list"}, "FILE is required"},
      {{"list", "missing.svg"}, "cannot read missing.svg"},
      {{"list", "folder"}, "cannot read folder"},
      {{"list", "--bogus", kSample}, "--bogus"},
      {{"inspect", "missing.svg"}, "cannot read missing.svg"},
      {{"render", "missing.svg", "square"}, "cannot read missing.svg"},
      {{"render", kSample, "square", "-o", "no/such/out.png"}, "cannot write no/such/out.png"},
      {{"render", kSample, "square", "--backend", "gpu"}, "--backend"},
      {{"render-all", kSample}, "--output is required"},
      {{"render-all", "missing.svg", "-o", "out"}, "cannot read missing.svg"},
      {{"render-all", kSample, "-o", "out", "-j", "0"}, "--jobs"},
      {{"render-all", kSample, "-o", "a-file"}, "cannot create a-file"},
      {{"sheet", kSample}, "--output is required"},
      {{"sheet", "missing.svg", "-o", "s.png"}, "cannot read missing.svg"},
      {{"sheet", kSample, "-o", "s.png", "--columns", "0"}, "--columns"},
      {{"sheet", kSample, "-o", "s.png", "--cell", "8"}, "--cell"},
      {{"sheet", kSample, "-o", "folder"}, "cannot write folder"},
      {{"report", kSample}, "--output is required"},
      {{"report", "missing.svg", "-o", "out"}, "cannot read missing.svg"},
      {{"report", kSample, "-o", "a-file"}, "cannot create a-file/images"},
  };
  for (const auto& [args, message] : cases) {
    SCOPED_TRACE(args[0] + " " + message);
    const CommandResult result = run(args);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_EQ(result.err.rfind("tessaline: ", 0), 0u) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
  }
}

TEST_F(CommandTest, ListPrintsEveryKeyInByteOrderAndWarnsOfNoSymbols) {
  const std::string sprite =
      "<svg><symbol id='b'/><symbol id='\xc3\xa9'/><symbol id='B'/><symbol id='a b'/>"
      "<symbol id='_x'/><symbol id='a'/><symbol id='b'/><symbol viewBox='0 0 1 1'/></svg>";
  const CommandResult result = run({"list", "-"}, sprite);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "B\n_x\na\na b\nb\n\xc3\xa9\n");
  EXPECT_EQ(result.err, "");
  // A document that is not well-formed has no symbols.
  write("broken.svg", "<svg><symbol id='a'></svg>");
  const CommandResult list = run({"list", "broken.svg"});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.out, "");
  EXPECT_EQ(list.err, "tessaline: no symbols found\n");
  const CommandResult inspect = run({"inspect", "broken.svg"});
  EXPECT_EQ(inspect.status, 0);
  EXPECT_EQ(Json::parse(inspect.out), Json::parse(R"({"url": "", "symbols": {}})"));
  EXPECT_EQ(inspect.err, "tessaline: no symbols found\n");
}

// Every field of every kind, in order. Floats print as the shortest text that reads back as the
// same float (0.1); a coordinate that failed to parse is null or 0 as its element decides; the
// line follows the outermost group, so it inherits nothing, not even the symbol's fill.
constexpr const char* kEveryElementJson = R"json({"url": "", "symbols": {
 "Dot": {"id": "Dot", "viewBox": [0, 0, 16, 8], "errors": [],
  "components": [{"type": "circle", "id": "", "attributes": {}, "cx": 4, "cy": 4, "r": 4}],
  "defs": null},
 "b-nested": {"id": "b-nested", "viewBox": [10, 10, 24, 24],
  "errors": ["Encountered unknown SVG component: bogus"], "components": [],
  "defs": {"id": "", "viewBox": null, "errors": ["Encountered unknown SVG component: bogus"],
   "components": [{"type": "clipPath", "id": "inner", "definition": {"id": "", "viewBox": null,
     "errors": ["Encountered unknown SVG component: bogus"], "components": [{"type": "rect",
     "id": "", "attributes": {}, "x": 0, "y": 0, "width": 1, "height": 1, "rx": 0, "ry": 0}],
     "defs": null}}],
   "defs": {"id": "", "viewBox": null, "errors": [], "components": [
     {"type": "path", "id": "", "attributes": {}, "d": "M0 0", "fillRule": ""}], "defs": null}}},
 "shapes": {"id": "shapes", "viewBox": [0, 0, 24, 24],
  "errors": ["Encountered unknown attribute for symbol: $attrName",
   "Encountered unknown SVG component: text", "Encountered invalid parameters for rect"],
  "components": [
   {"type": "path", "id": "outline", "attributes": {"fill": "#112233", "stroke": "black",
    "stroke-width": "0.1"}, "d": "M2 2H22V22H2Z", "fillRule": "evenodd"},
   {"type": "rect", "id": "box", "attributes": {"fill": "#112233", "opacity": "0.5",
    "fill-opacity": "0.25", "transform": "translate(1,2) scale(2)", "stroke-miterlimit": "4",
    "stroke-linecap": "round", "stroke-linejoin": "bevel"},
    "x": 0.1, "y": 2, "width": 3.5, "height": 4, "rx": 0.5, "ry": 0.5},
   {"type": "circle", "id": "", "attributes": {"fill": "#112233", "opacity": "0.5",
    "fill-opacity": "0.25", "transform": "translate(1,2) scale(2)", "stroke-linecap": "round",
    "stroke-linejoin": "bevel", "clip-path": "url(#clip)"}, "cx": 12, "cy": null, "r": 3},
   {"type": "ellipse", "id": "", "attributes": {"fill": "#112233", "opacity": "0.5",
    "transform": "translate(1,2) rotate(45)", "stroke-linecap": "round"},
    "cx": 6, "cy": 7, "rx": 2, "ry": 1.5},
   {"type": "line", "id": "", "attributes": {"stroke": "red"}, "x1": 1, "y1": 0, "x2": 23,
    "y2": 23},
   {"type": "polygon", "id": "", "attributes": {"fill": "none"},
    "points": [[0, 0], [10, 0], [10, 10]]},
   {"type": "use", "id": "", "attributes": {"fill": "blue"}, "href": "#dot", "hrefLink": "#dot"},
   {"type": "clipPath", "id": "clip", "definition": {"id": "", "viewBox": null, "errors": [],
    "components": [{"type": "circle", "id": "", "attributes": {}, "cx": 12, "cy": 12, "r": 10}],
    "defs": null}}],
  "defs": {"id": "", "viewBox": null, "errors": [], "components": [
   {"type": "circle", "id": "dot", "attributes": {}, "cx": 1, "cy": 1, "r": 1}], "defs": null}}
}})json";

TEST_F(CommandTest, InspectPrintsTheWholeTableOrOneDefinition) {
  const std::string file = std::string(TESSALINE_TEST_DATA) + "/every_element.svg";
  const CommandResult whole = run({"inspect", file});
  ASSERT_EQ(whole.status, 0) << whole.err;
  EXPECT_EQ(whole.err, "");
  // Ordered objects compare their keys in order.
  EXPECT_EQ(Json::parse(whole.out), Json::parse(kEveryElementJson));

  const CommandResult one = run({"inspect", file, "Dot"});
  ASSERT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(Json::parse(one.out), Json::parse(kEveryElementJson)["symbols"]["Dot"]);
  // Keys are exact: "dot" is not "Dot".
  const CommandResult unknown = run({"inspect", file, "dot"});
  EXPECT_EQ(unknown.status, 1);
  EXPECT_EQ(unknown.out, "");
  EXPECT_EQ(unknown.err, "tessaline: no symbol with key \"dot\" in " + file + "\n");
}

TEST_F(CommandTest, InspectCopesWithHostileNesting) {
  // Deep enough that building or printing the JSON by recursion would exhaust the stack.
  constexpr int kDepth = 50000;
  std::string sprite = "<svg><symbol id='a'/><symbol id='deep'>";
  for (int i = 0; i < kDepth; ++i) sprite += i % 2 ? "<defs>" : "<clipPath>";
  sprite += "<circle cx='1' r='0.1'/>";
  for (int i = kDepth - 1; i >= 0; --i) sprite += i % 2 ? "</defs>" : "</clipPath>";
  sprite += "</symbol><symbol id='z'/></svg>";

  const CommandResult result = run({"inspect", "-"}, sprite);
  ASSERT_EQ(result.status, 0) << result.err;
  // Read without keeping key order: the order-keeping variant copies nested values as it reads
  // and takes quadratic time on this depth.
  const nlohmann::json document = nlohmann::json::parse(result.out);
  ASSERT_EQ(document["symbols"].size(), 3u);
  const nlohmann::json* level = &document["symbols"]["deep"];
  for (int i = 0; i < kDepth; ++i) {
    level = i % 2 ? &(*level)["defs"] : &(*level)["components"][0]["definition"];
    ASSERT_TRUE(level->is_object()) << "depth " << i;
  }
  EXPECT_EQ((*level)["components"][0]["r"], 0.1);
}

}  // namespace
}  // namespace tessaline::testing
