// The format interpreter: runs the edits of a format over the items of one write statement
// [ISO 1539-1, 10.4 to 10.8].
//
// A format text is parsed once and its program kept by the text, so that a literal inside a loop
// costs one look-up.
#include "kernel/format.hpp"

#include "kernel/format_edit.hpp"

#include <unordered_map>

namespace quelor {

namespace {

struct Program {
    std::vector<Edit> edits;
    std::vector<std::size_t> partner; ///< group and end_group: index of the other one
    std::string literals;             ///< texts without their doubled marks
    std::size_t revert = 0;           ///< where left-over items restart
    std::string_view error;
};

/// Copies a literal into the program, doubled marks made single.
Edit own_literal(Program& program, std::string_view text, Edit edit) {
    const std::string_view raw = text.substr(edit.begin, edit.length);
    edit.begin = program.literals.size();
    for (std::size_t i = 0; i < raw.size(); ++i) {
        program.literals += raw[i];
        if (raw[i] == edit.letter) ++i;
    }
    edit.length = program.literals.size() - edit.begin;
    return edit;
}

Program compile(std::string_view text) {
    Program program;
    std::vector<std::size_t> open;
    auto keep = [&](const Edit& edit) {
        const std::size_t at = program.edits.size();
        program.partner.push_back(at);
        program.edits.push_back(edit.kind == EditKind::literal ? own_literal(program, text, edit)
                                                               : edit);
        if (edit.kind == EditKind::group) open.push_back(at);
        if (edit.kind == EditKind::end_group) {
            program.partner[at] = open.back();
            program.partner[open.back()] = at;
            open.pop_back();
            if (open.empty()) program.revert = program.partner[at];
        }
    };
    program.error = FormatParser(text, keep).error();
    return program;
}

struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>{}(text);
    }
};

const Program& program_of(std::string_view text) {
    static std::unordered_map<std::string, Program, TextHash, std::equal_to<>> programs;
    const auto found = programs.find(text);
    if (found != programs.end()) return found->second;
    if (programs.size() >= 2000) // formats typed by a user in a long run
        programs.clear();
    return programs.emplace(text, compile(text)).first->second;
}

/// Edits that may pass without taking an item: a bound on nested repeats such as 9999(9999(1x)).
constexpr int idle_limit = 1000000;
/// Longest line: beyond it a format is a mistake.
constexpr std::size_t line_limit = 10000000;

class Writer {
public:
    Writer(const Program& program, std::span<const FormatItem> items)
        : program_(program), items_(items) {}

    FormatResult run() {
        if (!program_.error.empty())
            result_.error = std::string("malformed format: ") + std::string(program_.error);
        while (running_ && result_.error.empty()) {
            if (at_ == program_.edits.size())
                revert();
            else
                step(program_.edits[at_]);
        }
        if (result_.error.empty()) end_statement();
        return std::move(result_);
    }

private:
    struct Group {
        std::size_t begin;
        int left;
    };

    void step(const Edit& edit) {
        if (takes_item(edit.kind)) return data(edit);
        if (++idle_ > idle_limit) return fail("the format repeats without taking an item");
        switch (edit.kind) {
        case EditKind::group:
            groups_.push_back({at_, edit.repeat});
            break;
        case EditKind::end_group:
            if (--groups_.back().left > 0)
                at_ = groups_.back().begin;
            else
                groups_.pop_back();
            break;
        case EditKind::colon:
            running_ = taken_ < items_.size();
            break;
        default:
            control(edit);
        }
        ++at_;
    }

    void control(const Edit& edit) {
        switch (edit.kind) {
        case EditKind::literal:
            return put(std::string_view(program_.literals).substr(edit.begin, edit.length));
        case EditKind::skip:
            position_ += as_size(edit.w);
            break;
        case EditKind::tab:
            position_ = line_ + as_size(edit.w) - 1;
            break;
        case EditKind::tab_left:
            position_ -= std::min(as_size(edit.w), position_ - line_);
            break;
        case EditKind::slash:
            for (int i = 0; i < edit.repeat; ++i)
                new_line();
            idle_ += edit.repeat;
            break;
        case EditKind::dollar:
            dollar_ = true;
            break;
        case EditKind::scale:
            mode_.scale = edit.w;
            break;
        default:
            mode_.plus = edit.w == 1;
        }
    }

    void data(const Edit& edit) {
        for (int i = 0; i < edit.repeat; ++i) {
            if (taken_ == items_.size()) {
                running_ = false;
                return;
            }
            field(edit, items_[taken_++]);
            if (!result_.error.empty()) return;
        }
        idle_ = 0;
        ++at_;
    }

    /// One item by one edit. The usual case, at the end of the line, writes in place.
    void field(const Edit& edit, const FormatItem& item) {
        if (position_ > line_ + line_limit) return fail("the line is too long");
        std::string& text = result_.text;
        if (position_ >= text.size()) {
            text.append(position_ - text.size(), ' ');
            if (write_item(text, edit, item)) position_ = text.size();
            return;
        }
        std::string apart;
        if (write_item(apart, edit, item)) put(apart);
    }

    bool write_item(std::string& out, const Edit& edit, const FormatItem& item) {
        using Kind = FormatItem::Kind;
        switch (item.kind) {
        case Kind::integer:
            if (edit.kind > EditKind::hexadecimal && edit.kind != EditKind::general) break;
            write_whole_field(out, item.integer, as_whole(edit), mode_);
            return true;
        case Kind::real:
            if (edit.kind < EditKind::fixed || edit.kind > EditKind::general) break;
            if (write_real_field(out, item.real, edit, mode_)) return true;
            fail("a scale factor or precision that a real edit descriptor does not allow");
            return false;
        case Kind::text:
            if (edit.kind != EditKind::text && edit.kind != EditKind::general) break;
            write_text_field(out, item.text, edit.w);
            return true;
        case Kind::logical:
            if (edit.kind != EditKind::logical && edit.kind != EditKind::general) break;
            write_logical_field(out, item.integer != 0, edit.w);
            return true;
        }
        mismatch(edit, item);
        return false;
    }

    static Edit as_whole(Edit edit) {
        if (edit.kind == EditKind::general) {
            edit.kind = EditKind::integer;
            edit.d = -1;
        }
        return edit;
    }

    void mismatch(const Edit& edit, const FormatItem& item) {
        static constexpr std::string_view names[] = {"an integer", "a real number", "a text",
                                                     "a logical value"};
        const EditKind kind = edit.kind;
        const std::string_view wanted = names[kind <= EditKind::hexadecimal ? 0
                                              : kind <= EditKind::general   ? 1
                                              : kind == EditKind::text      ? 2
                                                                            : 3];
        fail("item " + std::to_string(taken_) + " is " +
             std::string(names[static_cast<std::size_t>(item.kind)]) +
             ", the edit descriptor takes " + std::string(wanted));
    }

    /// The format has ended: done, or the items left restart its last group on a new line.
    void revert() {
        if (taken_ == items_.size()) {
            running_ = false;
            return;
        }
        if (taken_ == reverted_) return fail("no data edit descriptor is left for the items");
        reverted_ = taken_;
        new_line();
        at_ = program_.revert;
    }

    /// Text at the position; what stands to its right is kept.
    void put(std::string_view text) {
        if (position_ - line_ + text.size() > line_limit) return fail("the line is too long");
        std::string& out = result_.text;
        if (position_ > out.size()) out.append(position_ - out.size(), ' ');
        out.replace(position_, std::min(text.size(), out.size() - position_), text);
        position_ += text.size();
    }

    /// Once `$` has been passed the statement stays on its line.
    void new_line() {
        if (dollar_) return;
        result_.text += '\n';
        position_ = line_ = result_.text.size();
    }

    void end_statement() {
        if (!dollar_)
            result_.text += '\n';
        else if (position_ > result_.text.size())
            put({}); // the line stays open where x or t has moved to
    }

    void fail(std::string message) {
        if (result_.error.empty()) result_.error = std::move(message);
    }

    const Program& program_;
    std::span<const FormatItem> items_;
    FormatResult result_;
    std::vector<Group> groups_;
    FieldMode mode_;
    std::size_t at_ = 0;                                  ///< edit to do next
    std::size_t taken_ = 0;                               ///< items done
    std::size_t reverted_ = static_cast<std::size_t>(-1); ///< items done at the last reversion
    std::size_t line_ = 0, position_ = 0;                 ///< start of the line, next column
    int idle_ = 0;
    bool dollar_ = false, running_ = true;
};

} // namespace

FormatItems::FormatItems(std::initializer_list<Argument> arguments) {
    items_.reserve(arguments.size());
    for (const Argument& argument : arguments)
        argument.append_to(*this);
}

FormatItems& FormatItems::add(bool value) {
    items_.push_back({.kind = FormatItem::Kind::logical, .integer = value ? 1 : 0});
    return *this;
}

FormatItems& FormatItems::add(double value) {
    items_.push_back({.kind = FormatItem::Kind::real, .real = value});
    return *this;
}

FormatItems& FormatItems::add(std::string_view text) {
    items_.push_back({.kind = FormatItem::Kind::text, .text = text});
    return *this;
}

FormatItems& FormatItems::add(Complex8 value) {
    return add(value.real()).add(value.imag());
}

FormatResult format_write(const Format& format, std::span<const FormatItem> items) {
    return Writer(program_of(format.text()), items).run();
}

} // namespace quelor
