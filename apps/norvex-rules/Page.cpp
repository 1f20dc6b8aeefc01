#include "Page.h"

#include "PageTemplate.h"

namespace NorvexRules {

std::string PageHtml(const nlohmann::ordered_json& book) {
    std::string data = book.dump(-1, ' ', true);
    // Within a script, only this could end it early.
    for (std::size_t at = 0; (at = data.find("</", at)) != std::string::npos; at += 3) data.replace(at, 2, "<\\/");
    std::string page = g_pageTemplate;
    const std::string mark = "/*BOOK*/";
    return page.replace(page.find(mark), mark.size(), data);
}

}  // namespace NorvexRules
