#include "details/page_rows.h"

#include <utility>

namespace torvane {

PageRows::PageRows(DetailPage& page, std::string_view title) : page_(page) {
    page_.title = title;
    page_.columns = {{"Name", 200}, {"Value", 280}, {"What it means", 530}};
}

void PageRows::add(std::string_view name, std::string_view value, std::string_view remark) {
    if (!heading_.empty()) {
        page_.rows.push_back({.cells = {std::exchange(heading_, {})}, .heading = true});
    }
    page_.rows.push_back({.cells = {std::string(name), std::string(value), std::string(remark)}});
}

void PageRows::addIfTold(std::string_view name, std::string_view value, std::string_view remark) {
    if (!value.empty()) {
        add(name, value, remark);
    }
}

DetailPage sentencePage(std::string_view title, std::string_view sentence) {
    return {
        .title = std::string(title), .columns = {{"", 1010}}, .rows = {{.cells = {std::string(sentence)}}}, .text = {}};
}

} // namespace torvane
