#include "navmesh/searchrecords.h"

#include <algorithm>
#include <span>

namespace ZUNO::NavMesh {

constexpr SearchRecords::Table SearchRecords::tableOfEmptyPages() {
    Table table{};
    std::fill(std::begin(table.mPages), std::end(table.mPages), &sEmptyPage);
    return table;
}

constinit SearchRecords::Page SearchRecords::sEmptyPage{};
constinit SearchRecords::Table SearchRecords::sEmptyTable = tableOfEmptyPages();

SearchRecords::SearchRecords(std::uint32_t nodeCount, BlockPool& pool)
    : mPageCount(nodeCount / recordsPerPage + 1),
      mTables(nodeCount / (recordsPerPage * pagesPerTable) + 1, &sEmptyTable, pool) {}

SearchRecord& SearchRecords::makePage(std::uint32_t node) {
    Table*& table = mTables[node / (recordsPerPage * pagesPerTable)];
    if (table == &sEmptyTable)
        table = pool().create<Table>(sEmptyTable);
    Page* const page = pool().create<Page>();
    table->mPages[node / recordsPerPage % pagesPerTable] = page;
    return page->mRecords[node % recordsPerPage];
}

void SearchRecords::clear() {
    std::size_t pagesLeft = mPageCount;
    for (Table*& table : mTables) {
        const std::size_t pages = std::min<std::size_t>(pagesLeft, pagesPerTable);
        pagesLeft -= pages;
        if (table == &sEmptyTable)
            continue;
        for (Page* const page : std::span(table->mPages).first(pages))
            if (page != &sEmptyPage)
                pool().destroy(page);
        pool().destroy(table);
        table = &sEmptyTable;
    }
}

} // namespace ZUNO::NavMesh
