// The list and inspect commands, run as a user would run them.
#include <algorithm>
#include <nlohmann/json.hpp>

#include "command_test.h"

namespace tessaline::testing {
namespace {

using Json = nlohmann::ordered_json;

class ListInspect : public CommandTest {};

const std::string kEveryElement = std::string(TESSALINE_TEST_DATA) + "/every_element.svg";

std::size_t lineCount(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

TEST_F(ListInspect, ListPrintsEveryKeyInByteOrder) {
  const std::string sprite =
      "<svg><symbol id='b'/><symbol id='\xc3\xa9'/><symbol id='B'/><symbol id='a b'/>"
      "<symbol id='_x'/><symbol id='a'/><symbol id='b'/><symbol viewBox='0 0 1 1'/></svg>";
  for (const std::string& file : {write("sprite.svg", sprite).string(), std::string("-")}) {
    SCOPED_TRACE(file);
    const CommandResult result = run({"list", file}, sprite);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.out, "B\n_x\na\na b\nb\n\xc3\xa9\n");
    EXPECT_EQ(result.err, "");
  }
}

TEST_F(ListInspect, ADocumentThatIsNotWellFormedHasNoSymbols) {
  write("broken.svg", "<svg><symbol id='a'></svg>");
  const CommandResult list = run({"list", "broken.svg"});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.out, "");
  EXPECT_NE(list.err.find("no symbols found"), std::string::npos);
  const CommandResult inspect = run({"inspect", "broken.svg"});
  EXPECT_EQ(inspect.status, 0);
  EXPECT_EQ(Json::parse(inspect.out), Json::parse(R"({"url": "", "symbols": {}})"));
  EXPECT_NE(inspect.err.find("no symbols found"), std::string::npos);
  const CommandResult inspectKey = run({"inspect", "broken.svg", "a"});
  EXPECT_EQ(inspectKey.status, 1);
  EXPECT_EQ(inspectKey.out, "");
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
     "errors": ["Encountered unknown SVG component: bogus"],
     "components": [{"type": "rect", "id": "", "attributes": {}, "x": 0, "y": 0, "width": 1,
                     "height": 1, "rx": 0, "ry": 0}], "defs": null}}],
   "defs": {"id": "", "viewBox": null, "errors": [], "components": [
     {"type": "path", "id": "", "attributes": {}, "d": "M0 0", "fillRule": ""}], "defs": null}}},
 "shapes": {"id": "shapes", "viewBox": [0, 0, 24, 24],
  "errors": ["Encountered unknown attribute for symbol: $attrName",
   "Encountered unknown SVG component: text", "Encountered invalid parameters for rect"],
  "components": [
   {"type": "path", "id": "outline", "attributes": {"fill": "#112233", "stroke": "black",
    "stroke-width": "0.1"}, "d": "M2 2H22V22H2Z", "fillRule": "evenodd"},
   {"type": "rect", "id": "box", "attributes": {"fill": "#112233", "opacity": "0.5",
    "fill-opacity": "0.25", "transform": "translate(1,2) scale(2)",
                     "stroke-miterlimit" : "4",
                     "stroke-linecap" : "round",
                     "stroke-linejoin" : "bevel"
}
, "x" : 0.1, "y" : 2, "width" : 3.5, "height" : 4, "rx" : 0.5, "ry" : 0.5
},
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

TEST_F(ListInspect, InspectPrintsTheWholeTableOrOneDefinition) {
  const CommandResult whole = run({"inspect", kEveryElement});
  ASSERT_EQ(whole.status, 0) << whole.err;
  EXPECT_EQ(whole.err, "");
  EXPECT_NE(whole.out.find("\"x\": 0.1,"), std::string::npos);
  // Ordered objects compare their keys in order.
  EXPECT_EQ(Json::parse(whole.out), Json::parse(kEveryElementJson));

  const CommandResult one = run({"inspect", kEveryElement, "Dot"});
  ASSERT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(Json::parse(one.out), Json::parse(kEveryElementJson)["symbols"]["Dot"]);
  for (const char* key : {"dot", "missing", ""}) {
    SCOPED_TRACE(key);
    const CommandResult unknown = run({"inspect", kEveryElement, key});
    EXPECT_EQ(unknown.status, 1);
    EXPECT_EQ(unknown.out, "");
    EXPECT_EQ(lineCount(unknown.err), 1u);
  }
}

TEST_F(ListInspect, InspectCopesWithHostileNesting) {
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
