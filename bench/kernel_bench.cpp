// Speed of the array store, the record parser and the database file.
//
//     kernel_bench [folder]      the folder takes two files of 1 GB, which are removed again
#include "kernel/dbfgen.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using namespace quelor;

template <class Action> double seconds(Action action) {
    const auto start = std::chrono::steady_clock::now();
    action();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

template <class Action> void report_ns(const char* what, int rounds, Action action) {
    const double each = seconds([&] {
        for (int i = 0; i < rounds; ++i)
            action(i);
    });
    std::printf("%-46s %8.0f ns\n", what, each / rounds * 1e9);
}

void bench_store() {
    constexpr int arrays = 1000;
    std::vector<std::string> names;
    for (int i = 0; i < arrays; ++i)
        names.push_back(".hyd_array_" + std::to_string(i));
    std::shuffle(names.begin(), names.end(), std::mt19937(1));
    for (const auto& name : names)
        create_real_scalar(name, 1);
    const auto name = [&](int i) -> const std::string& {
        return names[static_cast<std::size_t>(i) % arrays];
    };
    double sum = 0;
    report_ns("look-up among 1000 arrays", 1000000,
              [&](int i) { sum += *static_cast<double*>(find_array(name(i)).data); });
    report_ns("scalar created anew", 1000000, [&](int i) { create_real_scalar(name(i), sum); });
    report_ns("1 KB array created and deleted", 1000000, [](int) {
        create_array(type_real, "$work", {128});
        delete_array("$work");
    });
    db_clear();
}

void bench_records() {
    std::size_t length = 0;
    report_ns("record parsed: word, argument, two parameters", 300000, [&](int) {
        set_record("seti some_array v=12 -flag r=3 /* a comment");
        std::int32_t v = 0, r = 0;
        length += get_command_word().size() + get_arg(1).size();
        get_int_par("v=", v);
        get_int_par(" r=", r);
    });
}

/// The same bytes by one plain file.
bool plain_write(const std::string& path, const char* data, std::size_t n) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    bool good = file >= 0;
    for (std::size_t done = 0; good && done < n;) {
        const auto written = write(file, data + done, n - done);
        good = written > 0;
        if (good) done += static_cast<std::size_t>(written);
    }
    return close(file) == 0 && good;
}

void bench_save(const std::string& folder) {
    constexpr int n = 1 << 27; // doubles: 1 GB
    const std::string saved = folder + "/kernel_bench", plain = folder + "/kernel_bench.plain";
    const auto block = create_matrix<double>("large", n, 0);
    for (int i = 1; i <= n; ++i)
        block(i) = i;
    bool good = true;
    for (int round = 1; round <= 3 && good; ++round) {
        const double t_plain = seconds([&] {
            good =
                plain_write(plain, reinterpret_cast<const char*>(block.data), sizeof(double) * n);
        });
        std::remove(plain.c_str());
        const double t_save = seconds([&] { good = good && db_save(saved); });
        const double t_read = seconds([&] { good = good && db_read(saved); });
        std::remove((saved + ".db").c_str());
        std::printf("1 GB: plain write %6.2f s, save %6.2f s, readdb %6.2f s\n", t_plain, t_save,
                    t_read);
    }
    if (!good) std::printf("a file could not be written or read\n");
    db_clear();
}

} // namespace

int main(int argc, char** argv) {
    bench_store();
    bench_records();
    bench_save(argc > 1 ? argv[1] : ".");
}
