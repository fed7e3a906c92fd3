#include "fem/node_ordering.hpp"

#include <algorithm>
#include <bit>
#include <utility>

namespace quelor {

// --- the order of ties --------------------------------------------------------------------------

namespace {

/// Counts of marked places 0..n-1 (a Fenwick tree).
class Places {
public:
    explicit Places(std::size_t n) : sums_(n + 1) {}
    void add(std::size_t place, int amount) {
        for (std::size_t i = place + 1; i < sums_.size(); i += i & (~i + 1))
            sums_[i] += amount;
    }
    /// Marks at places below `place`.
    int below(std::size_t place) const {
        int sum = 0;
        for (std::size_t i = place; i > 0; i -= i & (~i + 1))
            sum += sums_[i];
        return sum;
    }
    /// Place of the mark that has `rank` marks before it.
    std::size_t find(int rank) const {
        std::size_t at = 0;
        for (std::size_t step = std::bit_floor(sums_.size() - 1); step > 0; step /= 2)
            if (at + step < sums_.size() && sums_[at + step] <= rank) {
                at += step;
                rank -= sums_[at];
            }
        return at;
    }

private:
    std::vector<int> sums_;
};

/// The order of one group of equal degrees, members[0] first in the list.
/// The exchange sort is an insertion sort that takes the list in order: a new node goes behind
/// those of its degree and turns each group of higher degree, first member to the end. So a group
/// is a ring: its last entry came in at the end and was then turned so many times, and going
/// backward through the members finds the place of each among those still free.
/// turns  in   members of lower degree that follow each member and precede the next
void order_group(std::span<std::int32_t> members, std::span<const int> turns) {
    Places open(members.size());
    for (std::size_t i = 0; i < members.size(); ++i)
        open.add(i, 1);
    std::vector<std::int32_t> ordered(members.size());
    int head = 0; // rank of the ring's first member among the open places
    for (std::size_t left = members.size(); left > 0; --left) {
        const int size = static_cast<int>(left);
        head = ((head - turns[left - 1]) % size + size) % size;
        const int last = (head + size - 1) % size;
        const std::size_t place = open.find(last);
        ordered[place] = members[left - 1];
        open.add(place, -1);
        if (last < head) --head;
    }
    std::ranges::copy(ordered, members.begin());
}

/// exchange_order by groups.
void order_long_list(std::span<std::int32_t> list, std::span<const std::int32_t> degree) {
    const auto degree_of = [&](std::int32_t n) { return degree[nth(n)]; };
    std::vector<std::size_t> index(list.size()); // places of the list by degree, then in order
    for (std::size_t i = 0; i < index.size(); ++i)
        index[i] = i;
    std::ranges::stable_sort(index, {}, [&](std::size_t i) { return degree_of(list[i]); });

    Places lower(list.size());
    std::vector<std::int32_t> sorted(list.size());
    std::vector<int> turns(list.size());
    for (std::size_t first = 0, last = 0; first < index.size(); first = last) {
        while (last < index.size() && degree_of(list[index[last]]) == degree_of(list[index[first]]))
            ++last;
        for (std::size_t i = first; i < last; ++i) {
            const std::size_t next = i + 1 < last ? index[i + 1] : list.size();
            turns[i] = lower.below(next) - lower.below(index[i]);
            sorted[i] = list[index[i]];
        }
        order_group(std::span(sorted).subspan(first, last - first),
                    std::span(turns).subspan(first, last - first));
        for (std::size_t i = first; i < last; ++i)
            lower.add(index[i], 1);
    }
    std::ranges::copy(sorted, list.begin());
}

} // namespace

void exchange_order(std::span<std::int32_t> list, std::span<const std::int32_t> degree) {
    constexpr std::size_t short_list = 64;
    if (list.size() > short_list) return order_long_list(list, degree);
    const auto degree_of = [&](std::size_t i) { return degree[nth(list[i])]; };
    for (std::size_t i = 0; i < list.size(); ++i)
        for (std::size_t j = i + 1; j < list.size(); ++j)
            if (degree_of(j) < degree_of(i)) std::swap(list[i], list[j]);
}

// --- the walk -----------------------------------------------------------------------------------

namespace {

std::size_t index_of(std::int32_t node) {
    return nth(node);
}

/// Nodes and elements, either way.
class Mesh {
public:
    Mesh(std::span<const std::int32_t> end, std::span<const std::int32_t> nodes, int count)
        : end_(end), nodes_(nodes), node_end_(as_size(count)), elements_(nodes.size()),
          mark_(as_size(count)) {
        for (const std::int32_t n : nodes)
            ++node_end_[index_of(n)];
        std::size_t sum = 0;
        for (std::size_t& e : node_end_)
            e = sum += e;
        for (std::size_t e = end.size(); e-- > 0;) // downward, so that each list ascends
            for (const std::int32_t n : nodes_of(e))
                elements_[--node_end_[index_of(n)]] = static_cast<std::int32_t>(e);
        // node_end_ now holds the beginnings; those of the next node are the ends.
        node_end_.push_back(nodes.size());
    }

    /// Appends the other nodes of n's elements that `wanted` admits, each once.
    template <class F> void neighbours(std::int32_t n, F wanted, std::vector<std::int32_t>& out) {
        mark_[index_of(n)] = n;
        for (std::size_t i = node_end_[index_of(n)]; i < node_end_[index_of(n) + 1]; ++i)
            for (const std::int32_t m : nodes_of(as_size(elements_[i]))) {
                if (mark_[index_of(m)] == n || !wanted(m)) continue;
                mark_[index_of(m)] = n;
                out.push_back(m);
            }
    }
    void clear_marks() { std::ranges::fill(mark_, 0); }

private:
    std::span<const std::int32_t> nodes_of(std::size_t element) const {
        const auto begin = element == 0 ? 0 : as_size(end_[element - 1]);
        return nodes_.subspan(begin, as_size(end_[element]) - begin);
    }

    std::span<const std::int32_t> end_, nodes_;
    std::vector<std::size_t> node_end_;
    std::vector<std::int32_t> elements_;
    std::vector<std::int32_t> mark_; // node for which a node was last listed
};

/// Appends the part of the mesh that holds `start`, level by level.
void order_part(Mesh& mesh, std::int32_t start, std::span<const std::int32_t> degree,
                std::vector<char>& visited, std::vector<std::int32_t>& order) {
    std::size_t at = order.size();
    order.push_back(start);
    visited[index_of(start)] = 1;
    for (; at < order.size(); ++at) {
        const std::size_t first = order.size();
        mesh.neighbours(
            order[at], [&](std::int32_t m) { return !visited[index_of(m)]; }, order);
        const std::span added = std::span(order).subspan(first);
        exchange_order(added, degree);
        for (const std::int32_t n : added)
            visited[index_of(n)] = 1;
    }
}

} // namespace

NodeOrdering order_nodes(std::span<const std::int32_t> end, std::span<const std::int32_t> nodes,
                         int count, bool reverse) {
    Mesh mesh(end, nodes, count);
    std::vector<std::int32_t> degree(as_size(count));
    std::vector<std::int32_t> list;
    std::int32_t start = 0;
    for (std::int32_t n = 1; n <= count; ++n) {
        list.clear();
        mesh.neighbours(
            n, [](std::int32_t) { return true; }, list);
        degree[index_of(n)] = static_cast<std::int32_t>(list.size());
        const bool lower = start == 0 || degree[index_of(n)] < degree[index_of(start)];
        if (!list.empty() && lower) start = n;
    }
    NodeOrdering result;
    if (start == 0) return result;

    mesh.clear_marks();
    std::vector<char> visited(as_size(count));
    order_part(mesh, start, degree, visited, result.order);
    result.parts = 1;
    std::vector<std::int32_t> other;
    for (std::int32_t n = 1; n <= count; ++n) {
        if (degree[index_of(n)] == 0 || visited[index_of(n)]) continue;
        if (result.parts++ == 1) result.second_part = n;
        order_part(mesh, n, degree, visited, other);
    }
    if (reverse) std::ranges::reverse(result.order);
    return result;
}

} // namespace quelor
