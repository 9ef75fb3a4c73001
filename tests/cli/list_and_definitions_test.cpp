// The list and inspect commands, run as a user would run them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "command_test.h"

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

using tessaline::testing::CommandResult;
using tessaline::testing::readAll;

class ListInspect : public tessaline::testing::CommandTest {};

const std::string kEveryElement = std::string(TESSALINE_TEST_DATA) + "/every_element.svg";

std::size_t lineCount(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

std::vector<std::string> keysOf(const Json& object) {
  std::vector<std::string> keys;
  for (const auto& item : object.items()) keys.push_back(item.key());
  return keys;
}

using Keys = std::vector<std::string>;

TEST_F(ListInspect, ListPrintsEveryKeyInByteOrder) {
  const std::string sprite =
      "<svg><symbol id='b'/><symbol id='\xc3\xa9'/><symbol id='B'/><symbol id='a b'/>"
      "<symbol id='_x'/><symbol id='a'/><symbol id='b'/><symbol viewBox='0 0 1 1'/></svg>";
  const std::string expected = "B\n_x\na\na b\nb\n\xc3\xa9\n";
  const fs::path file = write("sprite.svg", sprite);

  CommandResult fromFile = run({"list", file.string()});
  EXPECT_EQ(fromFile.status, 0);
  EXPECT_EQ(fromFile.out, expected);
  EXPECT_EQ(fromFile.err, "");

  CommandResult fromInput = run({"list", "-"}, sprite);
  EXPECT_EQ(fromInput.status, 0);
  EXPECT_EQ(fromInput.out, expected);
}

TEST_F(ListInspect, UsageAndReadErrorsPrintOneLineAndExitTwo) {
  const std::string missing = (dir_ / "missing.svg").string();
  const std::vector<std::vector<std::string>> cases = {
      {"list", missing},       {"list"},    {"list", "--bogus", kEveryElement},
      {"inspect", missing},    {"inspect"}, {"inspect", kEveryElement, "shapes", "extra"},
      {"list", dir_.string()},
  };
  for (const auto& args : cases) {
    std::string joined;
    for (const auto& arg : args) joined += arg + " ";
    SCOPED_TRACE(joined);
    const CommandResult result = run(args);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(lineCount(result.err), 1u) << result.err;
    EXPECT_EQ(result.err.rfind("tessaline: ", 0), 0u) << result.err;
  }
}

TEST_F(ListInspect, ADocumentThatIsNotWellFormedHasNoSymbols) {
  const fs::path file = write("broken.svg", "<svg><symbol id='a'></svg>");

  const CommandResult list = run({"list", file.string()});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(list.out, "");
  EXPECT_NE(list.err.find("no symbols found"), std::string::npos);

  const CommandResult inspect = run({"inspect", file.string()});
  EXPECT_EQ(inspect.status, 0);
  EXPECT_EQ(Json::parse(inspect.out), Json::parse(R"({"url": "", "symbols": {}})"));
  EXPECT_NE(inspect.err.find("no symbols found"), std::string::npos);

  const CommandResult inspectKey = run({"inspect", file.string(), "a"});
  EXPECT_EQ(inspectKey.status, 1);
  EXPECT_EQ(inspectKey.out, "");
}

// Every object of the output has exactly the fields of its kind.
void expectSchema(const Json& definition) {
  static const std::map<std::string, Keys> kComponentKeys = {
      {"path", {"type", "id", "attributes", "d", "fillRule"}},
      {"rect", {"type", "id", "attributes", "x", "y", "width", "height", "rx", "ry"}},
      {"circle", {"type", "id", "attributes", "cx", "cy", "r"}},
      {"ellipse", {"type", "id", "attributes", "cx", "cy", "rx", "ry"}},
      {"line", {"type", "id", "attributes", "x1", "y1", "x2", "y2"}},
      {"polygon", {"type", "id", "attributes", "points"}},
      {"use", {"type", "id", "attributes", "href", "hrefLink"}},
      {"clipPath", {"type", "id", "definition"}},
  };
  static const std::set<std::string> kAttributeNames = {
      "fill",         "opacity",           "fill-opacity",   "transform",       "stroke",
      "stroke-width", "stroke-miterlimit", "stroke-linecap", "stroke-linejoin", "clip-path"};
  std::vector<const Json*> pending{&definition};
  while (!pending.empty()) {
    const Json& def = *pending.back();
    pending.pop_back();
    ASSERT_EQ(keysOf(def), (Keys{"id", "viewBox", "errors", "components", "defs"}));
    EXPECT_TRUE(def["id"].is_string());
    EXPECT_TRUE(def["viewBox"].is_null() || def["viewBox"].size() == 4u);
    for (const Json& error : def["errors"]) EXPECT_TRUE(error.is_string());
    for (const Json& component : def["components"]) {
      const std::string type = component["type"];
      ASSERT_TRUE(kComponentKeys.contains(type)) << type;
      EXPECT_EQ(keysOf(component), kComponentKeys.at(type));
      EXPECT_TRUE(component["id"].is_string() || component["id"].is_null());
      if (component.contains("attributes")) {
        for (const auto& item : component["attributes"].items()) {
          EXPECT_TRUE(kAttributeNames.contains(item.key())) << item.key();
          EXPECT_TRUE(item.value().is_string());
        }
      }
      if (type == "clipPath") pending.push_back(&component["definition"]);
    }
    if (!def["defs"].is_null()) pending.push_back(&def["defs"]);
  }
}

TEST_F(ListInspect, InspectPrintsTheWholeTableOfASampleWithEveryElementKind) {
  const CommandResult result = run({"inspect", kEveryElement});
  ASSERT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  // Stored floats print as the shortest text that reads back as the same float.
  EXPECT_NE(result.out.find("\"x\": 0.1,"), std::string::npos);

  const Json document = Json::parse(result.out);
  EXPECT_EQ(keysOf(document), (Keys{"url", "symbols"}));
  EXPECT_EQ(document["url"], "");
  EXPECT_EQ(keysOf(document["symbols"]), (Keys{"Dot", "b-nested", "shapes"}));
  for (const auto& item : document["symbols"].items()) {
    SCOPED_TRACE(item.key());
    EXPECT_EQ(item.value()["id"], item.key());
    expectSchema(item.value());
  }

  const Json& shapes = document["symbols"]["shapes"];
  EXPECT_EQ(shapes["viewBox"], Json::parse("[0, 0, 24, 24]"));
  EXPECT_EQ(shapes["errors"], Json::parse(R"([
      "Encountered unknown attribute for symbol: $attrName",
      "Encountered unknown SVG component: text",
      "Encountered invalid parameters for rect"])"));
  Keys types;
  for (const Json& component : shapes["components"]) types.push_back(component["type"]);
  EXPECT_EQ(types,
            (Keys{"path", "rect", "circle", "ellipse", "line", "polygon", "use", "clipPath"}));

  const Json& components = shapes["components"];
  EXPECT_EQ(components[0]["id"], "outline");
  EXPECT_EQ(components[0]["fillRule"], "evenodd");
  EXPECT_EQ(components[0]["attributes"],
            Json::parse(R"({"fill": "#112233", "stroke": "black", "stroke-width": "0.1"})"));
  const Json& rect = components[1];
  EXPECT_EQ(rect["x"].get<double>(), 0.1);
  EXPECT_EQ(rect["width"], 3.5);
  EXPECT_EQ(rect["ry"], 0.5);
  EXPECT_EQ(rect["attributes"]["transform"], "translate(1,2) scale(2)");
  EXPECT_EQ(rect["attributes"]["stroke-linejoin"], "bevel");
  EXPECT_TRUE(components[2]["cy"].is_null());
  EXPECT_EQ(components[3]["attributes"]["transform"], "translate(1,2) rotate(45)");
  // The line follows the outermost group, so it inherits nothing, not even the symbol's fill.
  EXPECT_EQ(components[4]["attributes"], Json::parse(R"({"stroke": "red"})"));
  EXPECT_EQ(components[4]["y1"], 0);
  EXPECT_EQ(components[5]["points"], Json::parse("[[0, 0], [10, 0], [10, 10]]"));
  EXPECT_EQ(components[6]["href"], "#dot");
  EXPECT_EQ(components[6]["hrefLink"], "#dot");
  EXPECT_EQ(components[6]["id"], "");
  EXPECT_EQ(components[7]["id"], "clip");
  EXPECT_EQ(components[7]["definition"]["components"][0]["r"], 10);
  EXPECT_EQ(shapes["defs"]["components"][0]["id"], "dot");

  const Json& dot = document["symbols"]["Dot"];
  EXPECT_EQ(dot["viewBox"], Json::parse("[0, 0, 16, 8]"));

  const Json& nested = document["symbols"]["b-nested"];
  EXPECT_EQ(nested["viewBox"], Json::parse("[10, 10, 24, 24]"));
  EXPECT_TRUE(nested["components"].empty());
  const Json& defs = nested["defs"];
  EXPECT_EQ(defs["components"][0]["type"], "clipPath");
  EXPECT_EQ(defs["components"][0]["definition"]["errors"],
            Json::parse(R"(["Encountered unknown SVG component: bogus"])"));
  EXPECT_EQ(defs["defs"]["components"][0]["d"], "M0 0");
  EXPECT_EQ(nested["errors"], defs["errors"]);
}

TEST_F(ListInspect, InspectWithAKeyPrintsOnlyThatDefinition) {
  const CommandResult whole = run({"inspect", kEveryElement});
  ASSERT_EQ(whole.status, 0);
  const CommandResult one = run({"inspect", kEveryElement, "Dot"});
  ASSERT_EQ(one.status, 0) << one.err;
  EXPECT_EQ(Json::parse(one.out), Json::parse(whole.out)["symbols"]["Dot"]);

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
