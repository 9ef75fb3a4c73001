#include <tessaline/tessaline.h>

#include <fstream>
#include <iostream>
#include <sstream>

int main() {
  std::ifstream in("examples/sprite.svg");
  std::stringstream text;
  text << in.rdbuf();

  // Parse once; the file can then be rendered many times, from several threads at once.
  const tessaline::SVGFile sprite(text.str());

  for (const auto& [key, definition] : sprite.symbolDefinitions) {
    const tessaline::TessalineResponse response = sprite.getUIImageForKey(key);
    // Problems never throw: they come back as texts with the image.
    for (const std::string& error : response.errors()) std::cout << key << ": " << error << '\n';
  }

  const tessaline::TessalineResponse home = sprite.getUIImageForKey("home");
  if (!home.bitmap()) return 1;                    // no symbol with that key
  const tessaline::Image& image = *home.bitmap();  // 256 x 256 RGBA, straight alpha
  std::cout << "home: " << image.width() << 'x' << image.height() << '\n';
  return image.writePng("home.png") ? 0 : 1;
}
