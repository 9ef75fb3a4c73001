#include "parse/element_handlers.h"

#include <gtest/gtest.h>

#include "geometry/basic_shapes.h"
#include "parse/parse_test_helpers.h"

namespace tessaline {
namespace {

using testing::componentAs;
using testing::Messages;
using testing::parseSymbolBody;

TEST(ElementHandlers, ReportEveryUnplacedAttributeWithTheElementsWording) {
  struct Case {
    const char* body;
    Messages messages;
  };
  const Case cases[] = {
      {"<path d='M0 0' Fill='red' foo='1' data-name='n' CLASS='c' isolation='i'/>",
       {"Encountered unknown attribute for path: foo"}},
      {"<ellipse cx='1' rx='2' ry='3' Bar='1' data-name='n' class='c'/>",
       {"Encountered unknown attribute for ellipse: Bar"}},
      {"<circle cx='1' r='2' isolation='x'/>",
       {"Encountered unknown attribute for circle: isolation"}},
      {"<rect width='1' height='1' cx='1'/>", {"Encountered unknown attribute for rect: cx"}},
      {"<polygon points='0 0' d='x'/>", {"Encountered unknown attribute for polygon: d"}},
      {"<line x1='1' r='1'/>", {"Encountered unknown attribute for line: r"}},
      {"<use id='u' data-name='n' class='c' xlink:href='#a'/>",
       {"Encountered unknown attribute for use: id",
        "Encountered unknown attribute for use: data-name",
        "Encountered unknown attribute for use: class"}},
      {"<g onclick='x' id='g' class='c' fill='red'/>",
       {"Encountered unknown attribute for path: onclick"}},
      {"<clipPath id='c' fill='red' Transform='scale(2)'/>",
       {"Encountered unknown attribute for clippath: fill",
        "Encountered unknown attribute for clippath: Transform"}},
      {"<defs id='d' foo='1'/>", {}},
      // Names as written, in attribute order, before the invalid-parameters message.
      {"<rect Zeta='1' alpha='2' height='3'/>",
       {"Encountered unknown attribute for rect: Zeta",
        "Encountered unknown attribute for rect: alpha",
        "Encountered invalid parameters for rect"}},
      // A malformed style is reported although its good declarations apply.
      {"<circle cx='1' r='1' style='fill:red;oops'/>",
       {"Encountered unknown attribute for circle: style"}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    EXPECT_EQ(parseSymbolBody(c.body)->errorMessages, c.messages);
  }
}

TEST(ElementHandlers, RequiredAttributesMustBeGivenAndNonEmpty) {
  struct Case {
    const char* body;
    Messages messages;
  };
  const Case cases[] = {
      {"<circle cy='5' r='2'/>", {"Encountered invalid parameters for circle"}},
      {"<circle cx='5' cy='5'/>", {"Encountered invalid parameters for circle"}},
      {"<circle cx='' r='2'/>", {"Encountered invalid parameters for circle"}},
      {"<ellipse cx='1' rx='2'/>", {"Encountered invalid parameters for ellipse"}},
      {"<ellipse cy='1' rx='2' ry='3'/>", {"Encountered invalid parameters for ellipse"}},
      {"<rect width='' height='4'/>", {"Encountered invalid parameters for rect"}},
      {"<rect width='4'/>", {"Encountered invalid parameters for rect"}},
      {"<polygon points=''/>", {"Encountered invalid parameters for polygon"}},
      {"<polygon/>", {"Encountered invalid parameters for polygon"}},
      {"<path id='p'/>", {}},  // a path without data is dropped silently
      {"<path d=''/>", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    auto definition = parseSymbolBody(c.body);
    EXPECT_EQ(definition->errorMessages, c.messages);
    EXPECT_TRUE(definition->svgComponents.empty());
  }
  // A value of blanks is present: it converts to 0.
  auto blank = parseSymbolBody("<rect width=' ' height='4'/>");
  EXPECT_TRUE(blank->errorMessages.empty());
  if (auto* rect = componentAs<RectComponent>(*blank, 0)) {
    EXPECT_EQ(rect->width, 0.0f);
  }
}

TEST(ElementHandlers, PathKeepsItsDataAndFillRuleAsWritten) {
  auto definition = parseSymbolBody(
      "<path D='M0 0L1 1' Fill-Rule='EvenOdd' ID='p1' fill='red'/><path d='m1 1'/>");
  EXPECT_TRUE(definition->errorMessages.empty());
  if (auto* path = componentAs<PathComponent>(*definition, 0)) {
    EXPECT_EQ(path->d, "M0 0L1 1");
    EXPECT_EQ(path->fillRule, "EvenOdd");
    EXPECT_EQ(path->id, "p1");
    EXPECT_EQ(path->attributes.fill, "red");
  }
  if (auto* path = componentAs<PathComponent>(*definition, 1)) {
    EXPECT_EQ(path->fillRule, "");
    EXPECT_EQ(path->id, "");  // present but empty when the tag has no id
  }
}

TEST(ElementHandlers, CirclesAndEllipsesLeaveAMissingCyAbsent) {
  auto definition = parseSymbolBody(
      "<circle cx='5' r='2'/><circle cx='5px' cy='6' r='2.5'/>"
      "<ellipse cx='1' rx='2' ry='3'/><ellipse cx='1' cy='' rx='2' ry='3' id='e'/>");
  EXPECT_TRUE(definition->errorMessages.empty());
  if (auto* circle = componentAs<CircleComponent>(*definition, 0)) {
    EXPECT_EQ(circle->cx, 5.0f);
    EXPECT_EQ(circle->cy, std::nullopt);
    EXPECT_EQ(circle->r, 2.0f);
  }
  if (auto* circle = componentAs<CircleComponent>(*definition, 1)) {
    EXPECT_EQ(circle->cx, 5.0f);
    EXPECT_EQ(circle->cy, 6.0f);
    EXPECT_EQ(circle->r, 2.5f);
  }
  if (auto* ellipse = componentAs<EllipseComponent>(*definition, 2)) {
    EXPECT_EQ(ellipse->cx, 1.0f);
    EXPECT_EQ(ellipse->cy, std::nullopt);
    EXPECT_EQ(ellipse->rx, 2.0f);
    EXPECT_EQ(ellipse->ry, 3.0f);
  }
  if (auto* ellipse = componentAs<EllipseComponent>(*definition, 3)) {
    EXPECT_EQ(ellipse->cy, std::nullopt);
    EXPECT_EQ(ellipse->id, "e");
  }
}

TEST(ElementHandlers, RectangleCornerRadiiStandInForEachOther) {
  struct Case {
    const char* radii;
    float rx;
    float ry;
  };
  const Case cases[] = {
      {"rx='2' ry='3'", 2, 3}, {"rx='2'", 2, 2}, {"ry='3'", 3, 3}, {"", 0, 0},
      {"rx='100'", 100, 100},  // no clamping to half a side
      {"rx='' ry='3'", 3, 3},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.radii);
    auto definition = parseSymbolBody(std::string("<rect width='10' height='4' ") + c.radii + "/>");
    EXPECT_TRUE(definition->errorMessages.empty());
    if (auto* rect = componentAs<RectComponent>(*definition, 0)) {
      EXPECT_EQ(rect->x, 0.0f);
      EXPECT_EQ(rect->y, 0.0f);
      EXPECT_EQ(rect->width, 10.0f);
      EXPECT_EQ(rect->height, 4.0f);
      EXPECT_EQ(rect->rx, c.rx);
      EXPECT_EQ(rect->ry, c.ry);
    }
  }
}

TEST(ElementHandlers, NumbersAreReadLenientlyWithoutMessages) {
  auto definition = parseSymbolBody(
      "<line x1='1' y1='abc'/><line X1='1' x1='2' x2='3e1' Y2=' -4.5px'/>"
      "<rect x='50%' y='auto' width='0.1' height='1e-1'/>");
  EXPECT_TRUE(definition->errorMessages.empty());
  if (auto* line = componentAs<LineComponent>(*definition, 0)) {
    EXPECT_EQ(line->x1, 1.0f);
    EXPECT_EQ(line->y1, 0.0f);
    EXPECT_EQ(line->x2, 0.0f);
    EXPECT_EQ(line->y2, 0.0f);
  }
  if (auto* line = componentAs<LineComponent>(*definition, 1)) {
    EXPECT_EQ(line->x1, 2.0f);  // the later of two spellings wins
    EXPECT_EQ(line->x2, 30.0f);
    EXPECT_EQ(line->y2, -4.5f);
  }
  if (auto* rect = componentAs<RectComponent>(*definition, 2)) {
    EXPECT_EQ(rect->x, 50.0f);
    EXPECT_EQ(rect->y, 0.0f);
    EXPECT_EQ(rect->width, 0.1f);
    EXPECT_EQ(rect->height, 0.1f);
  }
}

TEST(ElementHandlers, PolygonGetsItsPointsTextAsWritten) {
  auto definition = parseSymbolBody("<polygon id='tri' points='0 0 10 0 10 10' fill='red'/>");
  EXPECT_TRUE(definition->errorMessages.empty());
  if (auto* polygon = componentAs<PolygonComponent>(*definition, 0)) {
    EXPECT_EQ(polygon->id, "tri");
    EXPECT_EQ(polygon->attributes.fill, "red");
    EXPECT_EQ(polygon->points, (std::vector<Point>{{0, 0}, {10, 0}, {10, 10}}));
  }
}

TEST(ElementHandlers, UseKeepsBothReferencesAndNeverItsId) {
  auto definition = parseSymbolBody(
      "<use id='u' xlink:href='#a'/><use HREF='#b' XLINK:HREF='#c' fill='red' "
      "Transform='scale(2)'/>");
  EXPECT_EQ(definition->errorMessages, (Messages{"Encountered unknown attribute for use: id"}));
  if (auto* use = componentAs<UseComponent>(*definition, 0)) {
    EXPECT_EQ(use->id, "");
    EXPECT_EQ(use->href, "");
    EXPECT_EQ(use->hrefLink, "#a");
  }
  if (auto* use = componentAs<UseComponent>(*definition, 1)) {
    EXPECT_EQ(use->href, "#b");
    EXPECT_EQ(use->hrefLink, "#c");
    EXPECT_EQ(use->attributes.fill, "red");
    EXPECT_EQ(use->attributes.transform, "scale(2)");
  }
}

TEST(ElementHandlers, ClipPathTagYieldsOnlyItsId) {
  SVGDefinition definition;
  const SVGEvent tag{
      EventType::StartTag, "clipPath", {{"ID", "c1"}, {"fill", "red"}, {"id", "c2"}}};
  EXPECT_EQ(readClipPathId(tag, definition), "c2");
  EXPECT_EQ(definition.errorMessages,
            (Messages{"Encountered unknown attribute for clippath: fill"}));
  SVGDefinition other;
  EXPECT_EQ(readClipPathId({EventType::StartTag, "clipPath", {}}, other), "");
}

}  // namespace
}  // namespace tessaline
