// SPDX-License-Identifier: MIT
#include <fmt/format.h>

#include "manual/completions.h"
#include "manual/shellText.h"

namespace manual {

namespace {

// Readline breaks words at '=' and ':', too; they are put together again to see options and names
// whole. What it replaces is the last piece alone.
constexpr const char* kFunctions = R"(
# Sets `words` to the words before the cursor, whole, and `kept` to what of the last one stays.
_beatatlas_words() {
    local line=$COMP_LINE piece index
    words=() kept=
    for ((index = 0; index <= COMP_CWORD; ++index)); do
        piece=${COMP_WORDS[index]}
        if ((index > 0)) && [[ -n $line && $line != [[:space:]]* ]]; then
            kept=${words[-1]}
            words[-1]+=$piece
        else
            kept=
            words+=("$piece")
        fi
        line=${line#"${line%%[![:space:]]*}"}
        line=${line#"$piece"}
    done
    [[ $piece == [:=] ]] && kept=${words[-1]}
}

# Offers those of the words that the current one begins.
_beatatlas_offer() {
    local word
    for word in "$@"; do
        [[ $word == "$current"* ]] && COMPREPLY+=("$word")
    done
}

# Sets `plain` to what a word means, without its quotes.
_beatatlas_unquote() {
    local rest=$1 quote= char
    plain=
    while [[ -n $rest ]]; do
        char=${rest:0:1} rest=${rest:1}
        if [[ $char == \\ && $quote != "'" ]]; then
            [[ $quote == '"' && $rest != [\"\\\$\`]* ]] && plain+=$char
            plain+=${rest:0:1} rest=${rest:1}
        elif [[ $char == "$quote" ]]; then
            quote=
        elif [[ -z $quote && $char == [\"\'] ]]; then
            quote=$char
        else
            plain+=$char
        fi
    done
}

# Prints the files and folders whose names begin so, with a zero byte behind each: compgen puts a
# line feed there, which a name may hold.
_beatatlas_begun() (
    unset GLOBIGNORE
    set +f
    shopt -s nullglob dotglob
    shopt -u failglob nocaseglob
    [[ $(bind -v 2>/dev/null) == *"completion-ignore-case on"* ]] && shopt -s nocaseglob
    local -a names=("$1"*)
    ((${#names[@]} == 0)) || printf '%s\0' "${names[@]}"
)

# Sets `names` to the files and folders whose names begin like the current word, `prefix` to the
# tilde or variable that the word begins with, and `home` to what that stands for in the names.
_beatatlas_names() {
    local plain name='[[:alpha:]_][[:alnum:]_]*'
    prefix= home=
    _beatatlas_unquote "$current"
    if [[ $current =~ ^(~[[:alnum:]._-]*|\$$name|\$\{$name\})/ ]]; then
        prefix=${BASH_REMATCH[1]}
        eval "home=$prefix"
        plain=$home${plain#"$prefix"}
    fi
    mapfile -t -d '' names < <(_beatatlas_begun "$plain")
    # Readline is to quote what was found, and to put a slash behind folders.
    compopt -o filenames 2>/dev/null || :
}

# Offers folders and the files with one of the endings; any files where there are none.
_beatatlas_files() {
    local endings=" $* " prefix home name ending
    local -a names=() others=()
    _beatatlas_names
    for name in "${names[@]}"; do
        ending=${name##*.}
        if [[ -d $name || $endings == *" ${ending,,} "* ]]; then
            COMPREPLY+=("$prefix${name#"$home"}")
        else
            others+=("$prefix${name#"$home"}")
        fi
    done
    ((${#COMPREPLY[@]})) || COMPREPLY=("${others[@]}")
}

_beatatlas_folders() {
    local prefix home name
    local -a names=()
    _beatatlas_names
    for name in "${names[@]}"; do
        if [[ -d $name ]]; then
            COMPREPLY+=("$prefix${name#"$home"}")
        fi
    done
}
)";

constexpr const char* kMain = R"(
_beatatlas() {
    local -a words=() options=()
    local kept= current= plain= index isName=
    COMPREPLY=()
    _beatatlas_words
    current=${words[-1]}
    if ((${#words[@]} == 2)); then
        _beatatlas_offer "${_beatatlas_commands[@]}" --help --version
        return
    fi
    for ((index = 2; index < ${#words[@]} - 1; ++index)); do
        [[ ${words[index]} == -- ]] && isName=1
    done
    if [[ -z $isName && $current == --*=* ]]; then
        current=${current#*=}
        _beatatlas_value "${words[1]}" "${words[-1]%%=*}"
    elif [[ -z $isName && ${words[-2]} == -* ]] && _beatatlas_value "${words[1]}" "${words[-2]}"; then
        :
    else
        [[ -z $isName ]] && _beatatlas_options "${words[1]}"
        if [[ $current == -* && -z $isName ]]; then
            _beatatlas_offer "${options[@]}"
        else
            _beatatlas_name "${words[1]}" || _beatatlas_offer "${options[@]}"
        fi
    fi
    # Of a name, what stands before the last '=' or ':' stays.
    [[ -z $isName && $kept == --*=* ]] && kept=${kept#*=}
    if [[ -n $kept ]]; then
        _beatatlas_unquote "$kept"
        COMPREPLY=("${COMPREPLY[@]#"$plain"}")
    fi
}

complete -F _beatatlas beatatlas
)";

/** The call that offers what may stand for a value; empty where that is anything. */
std::string offerOf(const Argument& argument) {
    switch (argument.value) {
    case Value::none:
    case Value::text:
        return {};
    case Value::words: {
        std::string words;
        for (const Choice& choice : argument.choices) words += " " + choice.word;
        return "_beatatlas_offer" + words;
    }
    case Value::command:
        return "_beatatlas_offer \"${_beatatlas_commands[@]}\"";
    case Value::folder:
        return "_beatatlas_folders";
    default:
        return joined({"_beatatlas_files", joined(endingsOf(argument.value), " ")}, " ");
    }
}

std::string commandNames(const ProgramOutline& outline) {
    std::vector<std::string> names;
    for (const CommandOutline& command : outline.commands) names.push_back(command.name);
    return "\n_beatatlas_commands=(" + joined(names, " ") + ")\n";
}

std::string optionTable(const ProgramOutline& outline) {
    std::string cases;
    for (const CommandOutline& command : outline.commands) {
        std::vector<std::string> names;
        for (const Argument& option : command.options)
            for (const std::string& name : option.names()) names.push_back(name);
        cases += fmt::format("        {}) options=({}) ;;\n", command.name, joined(names, " "));
    }
    return "\n# Sets `options` to those of a command.\n_beatatlas_options() {\n    case $1 in\n" +
           cases + "    esac\n}\n";
}

std::string valueTable(const ProgramOutline& outline) {
    std::string cases;
    for (const CommandOutline& command : outline.commands) {
        for (const Argument& option : command.options) {
            if (option.isFlag()) continue;
            std::vector<std::string> patterns;
            for (const std::string& name : option.names())
                patterns.push_back(command.name + ":" + name);
            const std::string offer = offerOf(option);
            cases += fmt::format("        {}) {} ;;\n", joined(patterns, " | "),
                                 offer.empty() ? ":" : offer);
        }
    }
    return "\n# Offers what an option of a command takes; fails for a flag.\n"
           "_beatatlas_value() {\n    case $1:$2 in\n" +
           cases + "        *) return 1 ;;\n    esac\n}\n";
}

std::string nameTable(const ProgramOutline& outline) {
    std::string cases;
    for (const CommandOutline& command : outline.commands) {
        if (command.positionals.empty()) continue;
        const std::string offer = offerOf(command.positionals.front());
        if (!offer.empty()) cases += fmt::format("        {}) {} ;;\n", command.name, offer);
    }
    return "\n# Offers positional arguments of a command; fails where it takes none.\n"
           "_beatatlas_name() {\n    case $1 in\n" +
           cases + "        *) return 1 ;;\n    esac\n}\n";
}

}  // namespace

std::string bashCompletion(const ProgramOutline& outline) {
    return kMadeForShells + commandNames(outline) + kFunctions + optionTable(outline) +
           valueTable(outline) + nameTable(outline) + kMain;
}

}  // namespace manual
