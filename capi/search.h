#pragma once

#include "capi/session.h"

namespace ZUNO::CInterface {

/// A search that is open. Its session closes all of them before it ends.
class Search : public Object {
public:
    Search(Exports& exports, int id) : mExports(exports), mId(id) {}
    ~Search() override { mExports.closePathSearch(mId); }
    bool isOfSession() const override { return true; }

    Exports& mExports;
    const int mId; ///< of the exports
};

inline std::shared_ptr<Search> get(zuno_search* handle) {
    return get<Search>(handle, "the search");
}

} // namespace ZUNO::CInterface
