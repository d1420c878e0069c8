// Drawing by difference: each terminal cell remembers what it shows, so a draw sends only the cells the
// engine changed since the last one, however often the engine asked for an update in between.
#include "host/terminal_screen.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <clocale>
#include <cstdlib>
#include <iterator>

#include "engine/vexil.h"
#include "host/terminal_type.h"

#define NCURSES_NOMACROS
#include <curses.h>

namespace {

// Not SIGTERM: the host ends the session on it, and keeps the program.
constexpr int crash_signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT};
struct sigaction previous_actions[std::size(crash_signals)];
std::atomic<bool> crash_restores_terminal{false};  // a crash signal must restore the terminal

constexpr std::uint32_t invalid_cell = 0x0000FC00;  // bits no cell has: drawn at the next draw
constexpr int escape_delay_ms = 25;                 // an Escape alone, not the start of a key's sequence
constexpr int background = 0;                       // black, as a palette index and as an RGB value
constexpr int colour_count_565 = 1 << 16;

void restore_crash_handlers()
{
    for (std::size_t index = 0; index < std::size(crash_signals); ++index)
        sigaction(crash_signals[index], &previous_actions[index], nullptr);
}

// endwin is not async-signal-safe, but a terminal left in raw mode is worse than the risk. The
// signal's earlier handler (a sanitizer's report, or the default action) then runs as if we were not here.
void on_crash(int signal)
{
    if (crash_restores_terminal.exchange(false))
        endwin();
    restore_crash_handlers();
    raise(signal);
}

void install_crash_handlers()
{
    struct sigaction action = {};
    action.sa_handler = on_crash;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_NODEFER;
    for (std::size_t index = 0; index < std::size(crash_signals); ++index)
        sigaction(crash_signals[index], &action, &previous_actions[index]);
}

wchar_t glyph_character(std::uint32_t cell)
{
    // The font draws code AND 0x7F and has glyphs for 0x21 to 0x7E only; every other cell looks empty.
    int character = static_cast<int>(cell & 0x7F);
    return character > 0x20 && character < 0x7F ? static_cast<wchar_t>(character) : L' ';
}

}  // namespace

int follow_cursor(int origin, int target, int view, int grid)
{
    if (target < origin)
        origin = target;
    else if (target >= origin + view)
        origin = target - view + 1;
    return std::clamp(origin, 0, std::max(0, grid - view));
}

bool c_terminal_screen::open(std::string& error)
{
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO)) {
        error = "the terminal host needs a terminal on standard input and output";
        return false;
    }
    if (!terminal_usable(error))
        return false;
    // Keys in UTF-8 arrive as one character, whatever the locale says: a terminal that sends more than
    // ASCII sends UTF-8. Only the character type is set, so numbers keep their format.
    if (std::setlocale(LC_CTYPE, "") == nullptr || MB_CUR_MAX == 1)
        std::setlocale(LC_CTYPE, "C.UTF-8");
    // Before curses starts, which otherwise ends the process on SIGTERM with a status of its own.
    install_crash_handlers();
    p_terminal = newterm(nullptr, stdout, stdin);
    if (p_terminal == nullptr) {
        restore_crash_handlers();
        const char* name = std::getenv("TERM");
        error = std::string("cannot use the terminal type \"") + (name != nullptr ? name : "") + "\"";
        return false;
    }
    raw();
    noecho();
    nonl();
    keypad(stdscr, TRUE);
    meta(stdscr, TRUE);
    set_escdelay(escape_delay_ms);
    curs_set(0);  // the console draws its own cursor mark
    if (has_colors())
        start_color();
    colours = choose_colours(has_colors(), COLORS, tigetflag("RGB") > 0, can_change_color(), std::getenv("COLORTERM"));
    numbers.assign(colour_count_565, -1);
    crash_restores_terminal = true;
    resized();
    return true;
}

void c_terminal_screen::close()
{
    if (p_terminal == nullptr)
        return;
    if (crash_restores_terminal.exchange(false))
        endwin();
    restore_crash_handlers();
    delscreen(p_terminal);
    p_terminal = nullptr;
}

int c_terminal_screen::columns() const
{
    return COLS;
}

int c_terminal_screen::rows() const
{
    return LINES;
}

bool c_terminal_screen::read_key(int wait_ms, int& code, bool& is_function_key)
{
    wtimeout(stdscr, wait_ms);
    wint_t character = 0;
    int kind = wget_wch(stdscr, &character);
    if (kind == ERR)
        return false;
    code = static_cast<int>(character);
    is_function_key = kind == KEY_CODE_YES;
    return true;
}

void c_terminal_screen::resized()
{
    shadow_columns = std::max(COLS, 0);
    shadow_rows = std::max(LINES, 0);
    shadow.assign(static_cast<std::size_t>(shadow_columns) * shadow_rows, invalid_cell);
    werase(stdscr);
    clearok(stdscr, TRUE);
}

void c_terminal_screen::draw(const c_vexil& engine)
{
    int grid_columns = engine.columns(), grid_rows = engine.rows();
    if (shadow_columns != COLS || shadow_rows != LINES)
        resized();
    take_snapshot(engine);
    move_view(grid_columns, grid_rows);
    int view_columns = std::min(shadow_columns, grid_columns), view_rows = std::min(shadow_rows, grid_rows);
    for (int y = 0; y < view_rows; ++y) {
        for (int x = 0; x < view_columns; ++x) {
            std::uint32_t cell = snapshot[(origin_row + y) * grid_columns + origin_column + x] & ~cell_changed;
            std::uint32_t& shown = shadow[y * shadow_columns + x];
            if (shown != cell) {
                put_cell(x, y, cell);
                shown = cell;
            }
        }
    }
    // Hidden, but terminals and screen readers follow the real cursor.
    if (cursor_row >= 0)
        wmove(stdscr, cursor_row - origin_row, cursor_column - origin_column);
    wrefresh(stdscr);
}

// Each cell is read once, so the cursor's place and the cells drawn agree.
void c_terminal_screen::take_snapshot(const c_vexil& engine)
{
    int grid_columns = engine.columns(), grid_rows = engine.rows();
    snapshot.resize(static_cast<std::size_t>(grid_columns) * grid_rows);
    cursor_column = cursor_row = -1;
    for (int row = 0; row < grid_rows; ++row) {
        for (int column = 0; column < grid_columns; ++column) {
            std::uint32_t cell = engine.cell(column, row);
            snapshot[row * grid_columns + column] = cell;
            if ((cell & cell_cursor) != 0 && cursor_row < 0) {
                cursor_column = column;
                cursor_row = row;
            }
        }
    }
}

// Without a cursor mark (a program is running) the view stays where it was.
void c_terminal_screen::move_view(int grid_columns, int grid_rows)
{
    int view_columns = std::min(shadow_columns, grid_columns), view_rows = std::min(shadow_rows, grid_rows);
    int column = follow_cursor(origin_column, cursor_row >= 0 ? cursor_column : origin_column, view_columns, grid_columns);
    int row = follow_cursor(origin_row, cursor_row >= 0 ? cursor_row : origin_row, view_rows, grid_rows);
    if (column == origin_column && row == origin_row)
        return;
    origin_column = column;
    origin_row = row;
    std::fill(shadow.begin(), shadow.end(), invalid_cell);
}

void c_terminal_screen::put_cell(int x, int y, std::uint32_t cell)
{
    wchar_t text[2] = {glyph_character(cell), L'\0'};
    int pair = colour_pair(static_cast<std::uint16_t>(cell >> 16));
    attr_t attributes = (cell & cell_cursor) != 0 ? A_REVERSE : A_NORMAL;
    cchar_t glyph;
    setcchar(&glyph, text, attributes, 0, &pair);
    // The bottom right cell cannot move the cursor on and reports an error, but it is drawn.
    mvwadd_wch(stdscr, y, x, &glyph);
}

int c_terminal_screen::colour_pair(std::uint16_t colour)
{
    if (colours == terminal_colours::none)
        return 0;
    int number = colour_number(colour);
    if (auto found = pairs.find(number); found != pairs.end())
        return found->second;
    // Out of pairs, the terminal's own colours are the best left.
    if (next_pair >= COLOR_PAIRS || init_extended_pair(next_pair, number, background) == ERR)
        return 0;
    pairs.emplace(number, next_pair);
    return next_pair++;
}

int c_terminal_screen::colour_number(std::uint16_t colour)
{
    int& number = numbers[colour];
    if (number >= 0)
        return number;
    c_rgb rgb = rgb_of_565(colour);
    switch (colours) {
    case terminal_colours::direct:
        number = (rgb.red << 16) | (rgb.green << 8) | rgb.blue;
        break;
    case terminal_colours::redefined:
        // Curses counts colour levels to 1000. When the palette is used up, the nearest named colour.
        if (next_slot < std::min(COLORS, 256)
            && init_extended_color(next_slot, rgb.red * 1000 / 255, rgb.green * 1000 / 255, rgb.blue * 1000 / 255) != ERR)
            number = next_slot++;
        else
            number = nearest_palette_colour(rgb, 16);
        break;
    case terminal_colours::palette_256:
        number = nearest_palette_colour(rgb, 256);
        break;
    case terminal_colours::palette_16:
        number = nearest_palette_colour(rgb, 16);
        break;
    default:
        number = nearest_palette_colour(rgb, 8);
        break;
    }
    return number;
}
