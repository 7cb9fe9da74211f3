// The documents that the rich-text benchmarks run on, made by a generator of our own so that every
// machine lays out the same bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace mvp::bench {

class DocumentGenerator {
public:
    // About 200 bytes: a sentence or two and a link.
    static std::string Notification();
    // About 2 KB: headings, breaks, colours and a table.
    static std::string Report();
    // So many bytes of text in mixed inline styles.
    static std::string Mixed(std::size_t nBytes);
    // 50 rows of 20 columns with row and column spans.
    static std::string Table();
    // Tables in the cells of tables.
    static std::string Nested(int nDepth);

private:
    std::uint32_t Random(std::uint32_t nBelow);
    void Words(std::string& strOut, std::uint32_t nCount);

    std::uint32_t m_nState = 12345;
};

}  // namespace mvp::bench
