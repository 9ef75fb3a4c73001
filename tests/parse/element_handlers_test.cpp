#include "parse/element_handlers.h"

#include <gtest/gtest.h>

#include "parse/parse_test_helpers.h"

namespace tessaline {
namespace {

using testing::describe;
using testing::Messages;
using testing::parseSymbolBody;

const std::string kUnknown = "Encountered unknown attribute for ";
const std::string kInvalid = "Encountered invalid parameters for ";

// Every unplaced attribute is reported with the element's wording, names as written and in
// attribute order, before the invalid-parameters message. Required attributes must be given and
// non-empty; a value of blanks is present and converts to 0. Numbers are otherwise read leniently.
TEST(ElementHandlers, MessagesAndComponents) {
  struct Case {
    const char* body;
    Messages messages;
    const char* components;
  };
  const Case cases[] = {
      // Only a path passes over isolation. A malformed style is reported although its good
      // declarations apply.
      {"<path d='M0 0' Fill='red' foo='1' data-name='n' CLASS='c' isolation='i'/>"
       "<ellipse cx='1' rx='2' ry='3' Bar='1' data-name='n' class='c'/>"
       "<circle cx='1' r='2' isolation='x'/><polygon points='0 0' d='x'/><line x1='1' r='1'/>"
       "<circle cx='1' r='1' style='fill:red;oops'/><rect Zeta='1' alpha='2' height='3'/>",
       {kUnknown + "path: foo", kUnknown + "ellipse: Bar", kUnknown + "circle: isolation",
        kUnknown + "polygon: d", kUnknown + "line: r", kUnknown + "circle: style",
        kUnknown + "rect: Zeta", kUnknown + "rect: alpha", kInvalid + "rect"},
       "path d='M0 0' fill=red; ellipse cx=1 cy=- rx=2 ry=3; circle cx=1 cy=- r=2; polygon p=0,0; "
       "line x1=1 y1=0 x2=0 y2=0; circle cx=1 cy=- r=1 fill=red"},
      // A use ignores nothing and never keeps its id; groups report with the path wording; a clip
      // path keeps only its last id.
      {"<use id='u' data-name='n' class='c' xlink:href='#a'/><g onclick='x' id='g' class='c' "
       "fill='red'/><clipPath ID='c1' fill='red' id='c2' Transform='scale(2)'/>"
       "<defs id='d' foo='1'/>",
       {kUnknown + "use: id", kUnknown + "use: data-name", kUnknown + "use: class",
        kUnknown + "path: onclick", kUnknown + "clippath: fill", kUnknown + "clippath: Transform"},
       "use href='' xlink='#a'; clip#c2(); defs{}"},
      // Each element missing a required value is dropped with the message, in document order.
      {"<circle cx='' r='2'/><circle cx='5' cy='5'/><ellipse cx='1' rx='2'/>"
       "<ellipse cy='1' rx='2' ry='3'/><ellipse cx='1' ry='3'/><rect width='4'/>"
       "<rect width='' height='4'/><polygon points=''/><path id='p'/><path d=''/>",
       {kInvalid + "circle", kInvalid + "circle", kInvalid + "ellipse", kInvalid + "ellipse",
        kInvalid + "ellipse", kInvalid + "rect", kInvalid + "rect", kInvalid + "polygon"},
       ""},  // a path without data is dropped silently
      // A missing or empty cy stays absent; rectangle corner radii stand in for each other,
      // unclamped; the later of two spellings wins.
      {"<rect width=' ' height='4'/><path D='M0 0L1 1' Fill-Rule='EvenOdd' ID='p1' fill='red'/>"
       "<circle cx='5px' cy='6' r='2.5'/><ellipse cx='1' cy='' rx='2' ry='3' id='e'/>"
       "<rect width='10' height='4' rx='2' ry='3'/><rect width='10' height='4' rx='100'/>"
       "<rect width='10' height='4' rx='' ry='3'/>"
       "<line X1='1' x1='2' y1='abc' x2='3e1' Y2=' -4.5px'/>"
       "<rect x='50%' y='auto' width='0.1' height='1e-1'/>"
       "<use HREF='#b' XLIN\u212A:HREF='#c' fill='red' Transform='scale(2)'/>",
       {},
       "rect x=0 y=0 w=0 h=4 rx=0 ry=0; path#p1 d='M0 0L1 1' rule=EvenOdd fill=red; "
       "circle cx=5 cy=6 r=2.5; ellipse#e cx=1 cy=- rx=2 ry=3; rect x=0 y=0 w=10 h=4 rx=2 ry=3; "
       "rect x=0 y=0 w=10 h=4 rx=100 ry=100; rect x=0 y=0 w=10 h=4 rx=3 ry=3; "
       "line x1=2 y1=0 x2=30 y2=-4.5; rect x=50 y=0 w=0.1 h=0.1 rx=0 ry=0; "
       "use href='#b' xlink='#c' fill=red transform=scale(2)"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.body);
    auto definition = parseSymbolBody(c.body);
    EXPECT_EQ(definition->errorMessages, c.messages);
    EXPECT_EQ(describe(*definition), c.components);
  }
}

}  // namespace
}  // namespace tessaline
