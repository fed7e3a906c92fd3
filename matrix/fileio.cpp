// `read` and `write`: one array from or to a file, as an entry of an array file or, with -f, as
// text with a line for each row.
// Reads or writes the array named by the first argument; `$read` holds it until it is whole.
#include "matrix/fileio.hpp"

#include "kernel/array_file.hpp"
#include "kernel/gencom.hpp"
#include "kernel/project.hpp"
#include "kernel/utilities.hpp"

#include <charconv>

namespace quelor {

namespace {

constexpr std::size_t text_buffer_size = std::size_t{1} << 20;

/// The file that the second argument stands for: with -ext "<project>.filename".
std::string file_of_argument() {
    const std::string name(get_arg(2));
    return has_flag(" -ext") ? std::string(project_name()) + "." + name : name;
}

void cmd_read(std::string_view) {
    const std::string target(get_arg(1)), path = file_of_argument();
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    ArrayReader in = open_array_file(path);
    if (!in.file) return print_both(" \n\tRead failed: cannot open file " + path + "\n");
    Result result(target, "$read");
    if (!in.array(result.name()))
        return print_both(" \n\tRead failed: no whole array in file " + path + "\n");
    result.place();
}

// --- text: the fields of the C formats %8d, %d, %12.4e and %.4e

/// `width` 0 for the shortest text and a tab behind it.
struct TextForm {
    std::size_t integer_width, real_width;
};
constexpr TextForm columns{8, 12}, tabs{0, 0};

void append_field(std::string& text, std::string_view field, std::size_t width) {
    if (field.size() < width) text.append(width - field.size(), ' ');
    text += field;
    if (width == 0) text += '\t';
}

void append_value(std::string& text, const TextForm& form, std::int32_t value) {
    char field[16];
    const auto end = std::to_chars(field, std::end(field), value).ptr;
    append_field(text, {field, end}, form.integer_width);
}
void append_value(std::string& text, const TextForm& form, double value) {
    char field[24];
    const auto end =
        std::to_chars(field, std::end(field), value, std::chars_format::scientific, 4).ptr;
    append_field(text, {field, end}, form.real_width);
}
void append_value(std::string& text, const TextForm& form, Complex8 value) {
    append_value(text, form, value.real());
    append_value(text, form, value.imag());
}

/// The tables of an array of more than two dimensions follow one another.
template <class T> void write_rows(ArrayWriter& out, const ArrayRef& array, const TextForm& form) {
    const auto rows = std::ptrdiff_t{array.rows()}, table = rows * array.cols();
    const auto all = as_span<const T>(array);
    std::string text;
    text.reserve(text_buffer_size + 4096);
    for (const T* block = all.data(); block != all.data() + all.size(); block += table) {
        for (std::ptrdiff_t i = 0; i < rows; ++i) {
            for (std::ptrdiff_t at = i; at < table; at += rows) {
                append_value(text, form, block[at]);
                if (text.size() < text_buffer_size) continue;
                out.bytes(text.data(), text.size());
                text.clear();
            }
            text += '\n';
        }
    }
    out.bytes(text.data(), text.size());
}

using RowsWriter = void (*)(ArrayWriter&, const ArrayRef&, const TextForm&);

/// Null for a type that has no text form.
RowsWriter rows_writer(std::int32_t type) {
    switch (type) {
    case type_integer:
        return write_rows<std::int32_t>;
    case type_real:
        return write_rows<double>;
    case type_complex8:
        return write_rows<Complex8>;
    default:
        return nullptr;
    }
}

void cmd_write(std::string_view) {
    const std::string path = file_of_argument();
    const bool as_text = has_flag(" -f"), append = has_flag(" -a");
    const TextForm& form = has_flag(" -tab") ? tabs : columns;
    if (is_blank(get_arg(2))) return print_both(" \n\tTwo arguments required\n");
    const ArrayRef array = find_array(get_arg(1));
    if (!array) return not_found(get_arg(1));
    const RowsWriter write_text_rows = as_text ? rows_writer(array.type) : nullptr;
    if (as_text && !write_text_rows) return print_both(" \n\tWrite failed\n");
    ArrayWriter out{File(std::fopen(path.c_str(), append ? "ab" : "wb"))};
    if (as_text) {
        write_text_rows(out, array, form);
    } else {
        out.array(array);
    }
    if (!out.close()) print_both(" \n\tWrite failed\n");
}

constexpr Command rows[] = {
    {.words = {"read"},
     .run = cmd_read,
     .summary = "reads an array from a file",
     .help =
         "Command Syntax\n\tread arg filename [-ext]\n\n"
         "Creates array arg from a file that write made without -f. Type and dimensions come from "
         "the file; of several arrays in it the first is taken. When the file cannot be read the "
         "database stays as it is.\n\n"
         "arg\n\tname of the array created\n"
         "filename\n\tname of the file\n"
         "-ext\n\tthe file is \"project_name.filename\" (default: the name as it stands)\n\n"
         "Example\n\tseries a x=0,1 inc=0.25\n\twrite a five.bin\n\tread b five.bin\n\n"
         "See Also\n\twrite, readdb\n"},
    {.words = {"write"},
     .run = cmd_write,
     .summary = "writes an array to a file",
     .help =
         "Command Syntax\n\twrite arg filename [-ext] [-f] [-tab] [-a]\n\n"
         "Writes an array to a file, which is written over. The file holds the type, the "
         "dimensions and the elements in binary form, for read.\n\n"
         "arg\n\tname of the array\n"
         "filename\n\tname of the file\n"
         "-ext\n\tthe file is \"project_name.filename\" (default: the name as it stands)\n"
         "-f\n\twrite text instead, the elements only, each row on a line; for integer, real and "
         "complex arrays\n"
         "-tab\n\twith -f: a tab behind each number (default: columns of fixed width)\n"
         "-a\n\tadd to the end of the file (default: write over it)\n\n"
         "Example\n\tident a r=3\n\twrite a unit.txt -f -tab\n\n"
         "See Also\n\tread, save, print\n"},
};

} // namespace

std::span<const Command> fileio_rows() {
    return rows;
}

} // namespace quelor
