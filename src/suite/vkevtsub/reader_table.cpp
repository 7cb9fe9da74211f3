#include "suite/vkevtsub/reader_table.h"

#include <algorithm>
#include <utility>

namespace mvp {
namespace {

bool IsPresent(std::uint32_t nState) noexcept {
    return (nState & reader_state::kPresent) != 0;
}

bool SameCounter(std::uint32_t nOne, std::uint32_t nOther) noexcept {
    return nOne >> reader_state::kCounterShift == nOther >> reader_state::kCounterShift;
}

}  // namespace

ReaderTable::Names ReaderTable::SetReaders(const Names& names) {
    Names left;
    std::vector<Reader> readers;
    for (Reader& reader : m_readers) {
        if (std::ranges::find(names, reader.strName) != names.end()) {
            readers.push_back(std::move(reader));
        } else if (reader.bCardIn) {
            left.push_back(std::move(reader.strName));
        }
    }
    for (const std::string& name : names) {
        if (std::ranges::find(readers, name, &Reader::strName) == readers.end()) {
            readers.push_back({name});
        }
    }
    m_readers = std::move(readers);
    return left;
}

ReaderTable::Names ReaderTable::Update(const std::vector<ReaderState>& reports) {
    Names left;
    for (const ReaderState& report : reports) {
        const auto reader = std::ranges::find(m_readers, report.strName, &Reader::strName);
        if (reader == m_readers.end()) {
            continue;
        }
        const bool moved =
            reader->nState != reader_state::kUnaware && !SameCounter(reader->nState, report.nNow);
        if (reader->bCardIn && (moved || !IsPresent(report.nNow))) {
            left.push_back(reader->strName);
        }
        reader->bCardIn = IsPresent(report.nNow);
        reader->nState = report.nNow & ~reader_state::kChanged;
    }
    return left;
}

ReaderTable::Names ReaderTable::RemoveAll() {
    return SetReaders({});
}

void ReaderTable::ForgetCounters() {
    for (Reader& reader : m_readers) {
        reader.nState = reader_state::kUnaware;
    }
}

std::vector<ReaderState> ReaderTable::States() const {
    std::vector<ReaderState> states;
    for (const Reader& reader : m_readers) {
        states.push_back({reader.strName, reader.nState, reader_state::kUnaware});
    }
    return states;
}

}  // namespace mvp
