// A minimal host application: parses a sprite once, then renders the symbols named on the command
// line into PNG files next to the current folder, printing every error text it is given.
//
//   tessaline_host examples/sprite.svg home star
#include <tessaline/tessaline.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

int main(int argc, char** argv) {
  if (argc < 3) {
    std::cerr << "usage: tessaline_host SPRITE.svg KEY...\n";
    return 2;
  }
  std::ifstream in(argv[1], std::ios::binary);
  if (!in) {
    std::cerr << "tessaline_host: cannot read " << argv[1] << "\n";
    return 2;
  }
  std::stringstream text;
  text << in.rdbuf();

  // Parse once; the file may then be rendered any number of times, from any thread.
  const tessaline::SVGFile sprite(text.str());
  std::cout << sprite.symbolDefinitions.size() << " symbols\n";

  int status = 0;
  for (int i = 2; i < argc; ++i) {
    const std::string key = argv[i];
    const tessaline::TessalineResponse response = sprite.getUIImageForKey(key);
    for (const std::string& error : response.errors()) std::cout << key << ": " << error << "\n";
    if (!response.bitmap()) {
      status = 1;
      continue;
    }
    const tessaline::Image& image = *response.bitmap();
    const tessaline::Rgba centre = image.pixel(image.width() / 2, image.height() / 2);
    std::printf("%s: %dx%d, centre pixel rgba(%d, %d, %d, %d)\n", key.c_str(), image.width(),
                image.height(), centre.r, centre.g, centre.b, centre.a);
    if (!image.writePng(key + ".png")) status = 1;
  }
  return status;
}
