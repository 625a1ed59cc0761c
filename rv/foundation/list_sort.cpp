#include "rv/foundation/list_sort.h"

#include <algorithm>
#include <vector>

RV_OBJECT_IMPL(RVDListSort)

namespace {

// Natural merge sort with short runs lengthened by insertion sort, after Peters' Timsort; the order of the
// merges follows Munro and Wild's powersort, which keeps the work within n times the entropy of the runs.
//
// Invariant: the runs on the stack are adjacent and each is sorted; their powers increase towards the top.
class MergeSorter {
public:
    using Cells = std::vector<RVDListCell*>;

    MergeSorter(const RVDListSort& order, Cells& cells) : m_order(order), m_cells(cells) {}

    void sort() {
        const std::size_t n = m_cells.size();
        std::size_t begin = 0;
        std::size_t end = extendRun(begin);
        while (end < n) {
            const std::size_t nextEnd = extendRun(end);
            const int p = power(begin, end, nextEnd, n);
            while (!m_stack.empty() && m_stack.back().power > p) {
                begin = mergeWithTop(begin, end);
            }
            m_stack.push_back({begin, p});
            begin = end;
            end = nextEnd;
        }
        while (!m_stack.empty()) begin = mergeWithTop(begin, end);
    }

private:
    struct Run {
        std::size_t begin;
        int power;  // of the boundary behind this run
    };
    static constexpr std::size_t kShortRun = 24;

    bool goesBefore(RVDListCell* a, RVDListCell* b) const { return m_order.virtualCellCompare(a, b) < 0; }

    // Merges the run [begin, end) with the run on top of the stack, which ends at begin.
    std::size_t mergeWithTop(std::size_t begin, std::size_t end) {
        const std::size_t first = m_stack.back().begin;
        m_stack.pop_back();
        merge(first, begin, end);
        return first;
    }

    // The end of the run that starts at begin, after strictly falling runs have been turned and short runs
    // lengthened.
    std::size_t extendRun(std::size_t begin) {
        const std::size_t n = m_cells.size();
        std::size_t end = begin + 1;
        if (end < n) {
            if (goesBefore(m_cells[end], m_cells[begin])) {
                do ++end;
                while (end < n && goesBefore(m_cells[end], m_cells[end - 1]));
                std::reverse(m_cells.begin() + offset(begin), m_cells.begin() + offset(end));
            } else {
                do ++end;
                while (end < n && !goesBefore(m_cells[end], m_cells[end - 1]));
            }
        }
        for (const std::size_t wanted = std::min(n, begin + kShortRun); end < wanted; ++end) {
            RVDListCell* cell = m_cells[end];
            std::size_t place = end;
            for (; place > begin && goesBefore(cell, m_cells[place - 1]); --place)
                m_cells[place] = m_cells[place - 1];
            m_cells[place] = cell;
        }
        return end;
    }

    static std::ptrdiff_t offset(std::size_t i) { return static_cast<std::ptrdiff_t>(i); }

    // The depth of the boundary between two adjacent runs in a nearly balanced merge tree: the number of
    // leading bits that their midpoints, as fractions of n, have in common, plus one.
    static int power(std::size_t begin, std::size_t middle, std::size_t end, std::size_t n) {
        std::size_t a = begin + middle;
        std::size_t b = middle + end;
        const std::size_t whole = 2 * n;
        int result = 1;
        for (;; ++result) {
            a *= 2;
            b *= 2;
            const bool highA = a >= whole;
            const bool highB = b >= whole;
            if (highA != highB) return result;
            if (highA) {
                a -= whole;
                b -= whole;
            }
        }
    }

    // The first position in [low, high), sought from the low end in growing steps, whose cell goes behind
    // the given one.
    std::size_t firstBehind(RVDListCell* cell, std::size_t low, std::size_t high) const {
        std::size_t step = 1;
        std::size_t end = low;
        while (end < high && !goesBefore(cell, m_cells[end])) {
            low = end + 1;
            end += step;
            step *= 2;
        }
        high = std::min(end, high);
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            if (goesBefore(cell, m_cells[middle])) {
                high = middle;
            } else {
                low = middle + 1;
            }
        }
        return low;
    }

    // The position in [low, high), sought from the high end in growing steps, behind all cells that go
    // before the given one.
    std::size_t endOfBefore(RVDListCell* cell, std::size_t low, std::size_t high) const {
        std::size_t step = 1;
        std::size_t begin = high;
        while (begin > low && !goesBefore(m_cells[begin - 1], cell)) {
            high = begin - 1;
            begin = begin - low > step ? begin - step : low;
            step *= 2;
        }
        low = begin;
        while (low < high) {
            const std::size_t middle = low + (high - low) / 2;
            if (goesBefore(m_cells[middle], cell)) {
                low = middle + 1;
            } else {
                high = middle;
            }
        }
        return low;
    }

    void merge(std::size_t begin, std::size_t middle, std::size_t end) {
        begin = firstBehind(m_cells[middle], begin, middle);
        if (begin == middle) return;
        end = endOfBefore(m_cells[middle - 1], middle, end);
        if (middle - begin <= end - middle) {
            m_scratch.assign(m_cells.begin() + offset(begin), m_cells.begin() + offset(middle));
            std::size_t left = 0;
            std::size_t right = middle;
            for (std::size_t to = begin; left < m_scratch.size(); ++to) {
                const bool takeRight = right < end && goesBefore(m_cells[right], m_scratch[left]);
                m_cells[to] = takeRight ? m_cells[right++] : m_scratch[left++];
            }
        } else {
            m_scratch.assign(m_cells.begin() + offset(middle), m_cells.begin() + offset(end));
            std::size_t left = middle;
            std::size_t right = m_scratch.size();
            for (std::size_t to = end; right > 0; --to) {
                const bool takeLeft = left > begin && goesBefore(m_scratch[right - 1], m_cells[left - 1]);
                m_cells[to - 1] = takeLeft ? m_cells[--left] : m_scratch[--right];
            }
        }
    }

    const RVDListSort& m_order;
    Cells& m_cells;
    Cells m_scratch;
    std::vector<Run> m_stack;
};

}  // namespace

void RVDListSort::quickSort(RVDList* list, int) {
    if (list == nullptr || list->isReadOnly() || list->isSorted()) return;
    MergeSorter::Cells cells;
    cells.reserve(static_cast<std::size_t>(list->length()));
    for (RVDListCell* cell = list->pFirstCell(); cell != nullptr; cell = cell->pNextCell())
        cells.push_back(cell);
    if (!cells.empty()) {
        MergeSorter(*this, cells).sort();
        list->forgetCells();
        for (RVDListCell* cell : cells) list->linkLast(cell);
    }
    for (RVDListCell* cell : cells) virtualCellAction(cell);
}

int RVDListSort::virtualCellCompare(RVDListCell*, RVDListCell*) const { return 0; }

void RVDListSort::virtualCellAction(RVDListCell*) {}
