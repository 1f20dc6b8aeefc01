#include "Page.h"

#include "PageTemplate.h"

namespace NorvexRules {

std::string PageHtml(const Norvex::Document::Value& book) {
    std::string data = Norvex::Document::WriteJson(book, {-1, true});
    // Within a script, "</script" would end it early, and "<!--" with "<script" late.
    for (std::size_t at = 0; (at = data.find('<', at)) != std::string::npos; ++at) data.replace(at, 1, "\\u003c");
    std::string page = g_pageTemplate;
    const std::string mark = "/*BOOK*/";
    return page.replace(page.find(mark), mark.size(), data);
}

}  // namespace NorvexRules
