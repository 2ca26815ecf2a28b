#include "windows/AboutView.hpp"

#include "windows/Heading.hpp"

#include <utility>

namespace marvelode {

using namespace platform;

AboutView::AboutView(std::shared_ptr<Cfg> cfg, std::shared_ptr<BuildInfo> buildInfo)
    : cfg{std::move(cfg)}
    , buildInfo{std::move(buildInfo)} {}

View AboutView::body() const {
    std::vector<View> belowName;
    belowName.push_back(VerbatimText(buildInfo->date).font(Font::Caption));
    return VStack({
                      heading(cfg->isTest, std::move(belowName)).padding(Edges::Bottom, 12),
                      Text("Version: %@", {buildInfo->version}),
                      Text("Build: %@", {buildInfo->build}).padding(Edges::Bottom, 12),
                      Text("[License](" MARVELODE_LICENCE ")"),
                      Text("© 2026 [The Marvelode makers](" MARVELODE_HOMEPAGE ")").padding(Edges::Bottom, 12),
                      Text("[Support](" MARVELODE_SUPPORT ") development").padding(Edges::Bottom, 12),
                      Button("OK", 5, _done).keyboardShortcut(KeyboardShortcut::DefaultAction),
                  })
        .padding()
        .fixedSize();
}

} // namespace marvelode
