#include "geometry/path_parser.h"

#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "platform/case_folding.h"
#include "platform/fatal.h"
#include "platform/number_reader.h"

namespace tessaline {
namespace {

constexpr std::string_view kMustStartWithMove = "SVG must start with m or M";
constexpr std::string_view kUnknownCommand = "Encountered unknown path command: ";
#ifdef TESSALINE_FUZZING
constexpr std::string_view kEndlessClose = "path data repeats a close without end";
#endif

// The parameters a command reads, with the message for each one that is missing. Every message
// says "an", also before a consonant, and T/t reports with the Q/q texts.
struct CommandParameters {
  int count;
  std::array<std::string_view, 7> messages;
};

constexpr CommandParameters kMoveParameters{
    2, {"M/m command must have an X value", "M/m command must have an Y value"}};
constexpr CommandParameters kLineParameters{
    2, {"L/l command must have an X value", "L/l command must have an Y value"}};
constexpr CommandParameters kHorizontalParameters{1, {"H/h command must have an X value"}};
constexpr CommandParameters kVerticalParameters{1, {"V/v command must have an Y value"}};
constexpr CommandParameters kCubicParameters{
    6,
    {"C/c command must have an x1 value", "C/c command must have an y1 value",
     "C/c command must have an x2 value", "C/c command must have an y2 value",
     "C/c command must have an X value", "C/c command must have an Y value"}};
constexpr CommandParameters kSmoothCubicParameters{
    4,
    {"S/s command must have an x2 value", "S/s command must have an y2 value",
     "S/s command must have an X value", "S/s command must have an Y value"}};
constexpr CommandParameters kQuadParameters{
    4,
    {"Q/q command must have an x1 value", "Q/q command must have an y1 value",
     "Q/q command must have an X value", "Q/q command must have an Y value"}};
constexpr CommandParameters kSmoothQuadParameters{
    2, {"Q/q command must have an X value", "Q/q command must have an Y value"}};
constexpr CommandParameters kArcParameters{
    7,
    {"A/a command must have an rx value", "A/a command must have an ry value",
     "A/a command must have an xAxisRotation value", "A/a command must have an largeArcFlag value",
     "A/a command must have an sweepFlag value", "A/a command must have an X value",
     "A/a command must have an Y value"}};
constexpr CommandParameters kCloseParameters{0, {}};

// Null for anything that is not one of the twenty command letters (compared case-sensitively).
const CommandParameters* parametersFor(char letter) {
  switch (letter) {
    case 'm':
    case 'M':
      return &kMoveParameters;
    case 'l':
    case 'L':
      return &kLineParameters;
    case 'z':
    case 'Z':
      return &kCloseParameters;
    case 'a':
    case 'A':
      return &kArcParameters;
    case 'h':
    case 'H':
      return &kHorizontalParameters;
    case 'v':
    case 'V':
      return &kVerticalParameters;
    case 'c':
    case 'C':
      return &kCubicParameters;
    case 's':
    case 'S':
      return &kSmoothCubicParameters;
    case 'q':
    case 'Q':
      return &kQuadParameters;
    case 't':
    case 'T':
      return &kSmoothQuadParameters;
    default:
      return nullptr;
  }
}

bool isAsciiLetter(int code) {
  return (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z');
}

bool isDigit(int code) {
  return code >= '0' && code <= '9';
}

Point widen(float x, float y) {
  return {x, y};
}

}  // namespace

PathParser::PathParser(std::string_view d) : d(d), text_(this->d) {}

bool PathParser::isSeparatorAt(std::int64_t index) const {
  const int code = text_.codeAt(index);
  return code == ' ' || code == ',';
}

std::optional<std::string_view> PathParser::nextChar() {
  ++currentChar;
  while (currentChar < text_.count() && isSeparatorAt(currentChar)) ++currentChar;
  if (currentChar >= text_.count()) return std::nullopt;
  return text_.characterAt(currentChar);
}

std::optional<float> PathParser::nextFloat() {
  ++currentChar;
  while (currentChar < text_.count() && isSeparatorAt(currentChar)) ++currentChar;
  if (currentChar >= text_.count()) return std::nullopt;
  const std::int64_t start = currentChar;
  std::int64_t end = start;
  bool pointSeen = false, negative = false;
  // The digits are gathered on the way, so that the usual short decimal needs no second reading.
  std::uint64_t integer = 0;
  int digits = 0, fractionDigits = 0;
  for (; end < text_.count(); ++end) {
    const int code = text_.codeAt(end);
    if (code == '-' && end == start) {
      negative = true;
      continue;
    }
    if (isDigit(code)) {
      integer = integer * 10 + static_cast<std::uint64_t>(code - '0');
      ++digits;
      fractionDigits += pointSeen ? 1 : 0;
      continue;
    }
    if (code == '.' && !pointSeen) {
      pointSeen = true;
      continue;
    }
    break;
  }
  // The last character taken counts as consumed; when none was, the one that stopped the scan
  // is read again by whatever comes next.
  currentChar = end - 1;
  if (end == start) return std::nullopt;
  // What was taken is a whole decimal as the lenient reading sees it, so its short form, where
  // there is one, is the value that reading gives.
  if (digits > 0) {
    if (const std::optional<float> quick = shortDecimalValue(integer, digits, fractionDigits)) {
      return negative ? -*quick : *quick;
    }
  }
  // "-", "." and "-." have no digit and read as 0: a present value, not an error.
  return readLenientFloat(text_.slice(start, end));
}

bool PathParser::isNextCharALetter(std::int64_t check) const {
  const std::int64_t count = text_.count();
  if (count <= check) return false;
  std::int64_t i = check;
  int code = 0;
  while (true) {
    ++i;
    // Only spaces are skipped, and the bound below is tested after the read: when nothing but
    // spaces follows, this reads one past the end, which stops the process. Documents that
    // render today never reach it, and the behaviour is kept rather than turned into a message.
    code = text_.codeAt(i);
    if (code != ' ') break;
    if (count <= i) return false;
  }
  // The letter test lower-cases the character, and the Kelvin sign lower-cases to "k".
  if (code == detail::PathText::kNotAscii) return text_.characterAt(i) == kKelvinSign;
  return isAsciiLetter(code);
}

PathParserResult PathParser::parse(CGMutablePathWrapper& builder) {
  const auto fail = [&builder](std::string message) {
    return PathParserResult{builder.path(), std::move(message)};
  };

  std::optional<std::string_view> command = nextChar();
  if (!command || (*command != "m" && *command != "M")) {
    return fail(std::string(kMustStartWithMove));
  }

  // Run state in 32-bit floats, widened only when handed to the builder.
  float curX = 0, curY = 0;      // current point
  float startX = 0, startY = 0;  // start of the subpath: the point of the last move
  float lastX = 0, lastY = 0;    // last control point, reflected by S/s and T/t

  while (currentChar < text_.count()) {
    const char letter = command && command->size() == 1 ? command->front() : '\0';
    const CommandParameters* parameters = parametersFor(letter);
    if (parameters == nullptr) {
      return fail(std::string(kUnknownCommand) + std::string(command.value_or("")));
    }
    std::array<float, 7> p{};
    for (int i = 0; i < parameters->count; ++i) {
      const std::optional<float> value = nextFloat();
      if (!value) return fail(std::string(parameters->messages[i]));
      p[i] = *value;
    }
    // Relative parameters are all resolved against the current point before the command.
    // (Absolute values are left untouched rather than offset by 0, which would turn -0 into +0.)
    const bool relative = letter >= 'a' && letter <= 'z';
    const auto resolveX = [&](float v) { return relative ? v + curX : v; };
    const auto resolveY = [&](float v) { return relative ? v + curY : v; };
    // The reflection of the last control point about the current point. There is no check of
    // the previous command's kind: after anything but C/S/Q/T it is the current point itself,
    // and after Z the control point from before the Z.
    const float reflectedX = 2 * curX - lastX;
    const float reflectedY = 2 * curY - lastY;

    switch (letter) {
      case 'M':
      case 'm': {
        const float x = resolveX(p[0]), y = resolveY(p[1]);
        builder.move(widen(x, y));
        startX = x, startY = y;
        curX = lastX = x, curY = lastY = y;
        // Coordinate pairs after a move are lines.
        command = letter == 'M' ? std::string_view("L") : std::string_view("l");
        break;
      }
      case 'L':
      case 'l': {
        const float x = resolveX(p[0]), y = resolveY(p[1]);
        builder.addLine(widen(x, y));
        curX = lastX = x, curY = lastY = y;
        break;
      }
      case 'H':
      case 'h': {
        const float x = resolveX(p[0]);
        builder.addLine(widen(x, curY));
        curX = lastX = x, lastY = curY;
        break;
      }
      case 'V':
      case 'v': {
        const float y = resolveY(p[0]);
        builder.addLine(widen(curX, y));
        curY = lastY = y, lastX = curX;
        break;
      }
      case 'C':
      case 'c': {
        const float x1 = resolveX(p[0]), y1 = resolveY(p[1]), x2 = resolveX(p[2]),
                    y2 = resolveY(p[3]);
        const float x = resolveX(p[4]), y = resolveY(p[5]);
        builder.addCurve(widen(x, y), widen(x1, y1), widen(x2, y2));
        curX = x, curY = y, lastX = x2, lastY = y2;
        break;
      }
      case 'S':
      case 's': {
        const float x2 = resolveX(p[0]), y2 = resolveY(p[1]), x = resolveX(p[2]),
                    y = resolveY(p[3]);
        builder.addCurve(widen(x, y), widen(reflectedX, reflectedY), widen(x2, y2));
        curX = x, curY = y, lastX = x2, lastY = y2;
        break;
      }
      case 'Q':
      case 'q': {
        const float x1 = resolveX(p[0]), y1 = resolveY(p[1]), x = resolveX(p[2]),
                    y = resolveY(p[3]);
        builder.addQuadCurve(widen(x, y), widen(x1, y1));
        curX = x, curY = y, lastX = x1, lastY = y1;
        break;
      }
      case 'T':
      case 't': {
        const float x = resolveX(p[0]), y = resolveY(p[1]);
        // The reflection is already absolute; lower-case t offsets it by the current point once
        // more (3·cur − last). Existing outlines depend on this, so it stays.
        const float controlX = resolveX(reflectedX), controlY = resolveY(reflectedY);
        builder.addQuadCurve(widen(x, y), widen(controlX, controlY));
        curX = x, curY = y, lastX = controlX, lastY = controlY;
        break;
      }
      case 'A':
      case 'a': {
        // Only the end point is relative; the flags are plain numbers ("01" is one number).
        const float x = resolveX(p[5]), y = resolveY(p[6]);
        builder.arcTo(curX, curY, p[0], p[1], p[2], p[3], p[4], x, y);
        curX = lastX = x, curY = lastY = y;
        break;
      }
      case 'Z':
      case 'z':
        builder.closeSubpath();
        curX = startX, curY = startY;
        break;
      default:
        break;  // not reached: parametersFor() accepted the letter
    }

    // The next command: a letter after optional spaces starts one; anything else repeats this
    // command with fresh parameters. Z reads none, so "Z 5" closes again and again without end.
    if (currentChar + 1 < text_.count()) {
      if (isNextCharALetter(currentChar)) {
        command = nextChar();
      }
#ifdef TESSALINE_FUZZING
      // The fuzzing build turns the endless close into a stop it can tell from a hang.
      else if (letter == 'Z' || letter == 'z') {
        fatalError(kEndlessClose);
      }
#endif
    } else {
      command = nextChar();  // moves past the end, which ends the loop
    }
  }
  return PathParserResult{builder.path(), std::nullopt};
}

}  // namespace tessaline
