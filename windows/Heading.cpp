#include "windows/Heading.hpp"

#include "app/App.hpp"

#include <utility>

namespace marvelode {

using namespace platform;

View heading(bool isTest, std::vector<View> below) {
    constexpr double pictureHeight = 50;

    std::vector<View> row;
    if (!isTest) {
        const NSImage& picture = App::Icon::image();
        row.push_back(Image(picture)
                          .frame({.width = pictureHeight / picture.size.height * picture.size.width,
                                  .height = pictureHeight,
                                  .alignment = Alignment::Center})
                          .padding(Edges::Trailing, 12));
    }
    below.insert(below.begin(), Text("Marvelode Timer").font(Font::Title2));
    row.push_back(VStack(Alignment::Trailing, std::move(below)));
    return HStack(std::move(row));
}

} // namespace marvelode
