# bash completion for atlavex. What can be offered the program says itself (atlavex complete); here its answer is
# fitted to what was typed, with quotes and backslashes, and handed to readline.

# The words up to the cursor, without quotes and backslashes, in _atlavex_words. Of the last one also: the quote that
# is open, and how much of it readline leaves alone, because it ends a word at characters as ":" and "=".
_atlavex_read_line() {
    local line=${COMP_LINE:0:COMP_POINT} character word='' in_word='' index
    _atlavex_words=() _atlavex_quote='' _atlavex_kept=0
    for ((index = 0; index < ${#line}; index++)); do
        character=${line:index:1}
        if [[ $_atlavex_quote == "'" && $character != "'" ]]; then
            word+=$character
        elif [[ $character == "\\" ]]; then
            in_word=1
            ((++index < ${#line})) && word+=${line:index:1}
        elif [[ -n $_atlavex_quote ]]; then
            if [[ $character == "$_atlavex_quote" ]]; then
                _atlavex_quote=''
            else
                word+=$character
            fi
        elif [[ $character == [\"\'] ]]; then
            _atlavex_quote=$character in_word=1 _atlavex_kept=${#word}
        elif [[ $character == [[:space:]] ]]; then
            [[ -n $in_word ]] && _atlavex_words+=("$word")
            word='' in_word='' _atlavex_kept=0
        else
            word+=$character in_word=1
            [[ $COMP_WORDBREAKS == *"$character"* ]] && _atlavex_kept=${#word}
        fi
    done
    _atlavex_words+=("$word")
}

# The text as it is written inside the open quote, or without one.
_atlavex_quoted() {
    local text=$1 special=" \"'\\\`\$&|;<>()[]{}*?!#~" written='' index
    case $_atlavex_quote in
        \") special="\"\\\`\$" ;;
        \') special='' ;;
    esac
    for ((index = 0; index < ${#text}; index++)); do
        [[ $special == *"${text:index:1}"* ]] && written+="\\"
        written+=${text:index:1}
    done
    printf '%s' "$written"
}

# Those of the arguments that begin as the last word does, in whatever case if there are none otherwise.
_atlavex_offer_words() {
    local typed=${_atlavex_words[-1]} word fitting=()
    for word in "$@"; do
        [[ $word == "$typed"* ]] && fitting+=("$word")
    done
    if [[ ${#fitting[@]} -eq 0 ]]; then
        for word in "$@"; do
            [[ ${word,,} == "${typed,,}"* ]] && fitting+=("$word")
        done
    fi
    [[ ${#fitting[@]} -eq 1 && ${fitting[0]} == *= ]] && compopt -o nospace
    for word in "${fitting[@]}"; do
        word=${word:_atlavex_kept}
        # In a list that is only shown (63 is "?") names are easier to read as they are.
        [[ $COMP_TYPE -eq 63 ]] || word=$(_atlavex_quoted "$word")
        COMPREPLY+=("$word")
    done
}

# Libraries and the folders in which there may be more.
_atlavex_offer_libraries() {
    local typed=${_atlavex_words[-1]} path file
    path=$typed
    [[ $path == "~/"* ]] && path=$HOME/${path:2}
    compopt -o filenames
    for file in "$path"*; do
        [[ -d $file || (-e $file && ${file,,} == *.atlavex) ]] || continue
        file=$typed${file:${#path}}
        COMPREPLY+=("${file:_atlavex_kept}")
    done
}

_atlavex() {
    local _atlavex_words _atlavex_quote _atlavex_kept answer kind word
    COMPREPLY=()
    _atlavex_read_line
    for word in "${!_atlavex_words[@]}"; do
        [[ ${_atlavex_words[word]} == "~/"* && word -lt ${#_atlavex_words[@]}-1 ]] &&
            _atlavex_words[word]=$HOME/${_atlavex_words[word]:2}
    done
    mapfile -t answer < <("$1" complete "${_atlavex_words[@]:1}" 2>/dev/null </dev/null)
    kind=${answer[0]}
    unset 'answer[0]'
    case $kind in
        words) _atlavex_offer_words "${answer[@]%%$'\t'*}" ;;
        libraries) _atlavex_offer_libraries ;;
        folders) compopt -o dirnames ;;
        files) compopt -o default ;;
    esac
}

complete -F _atlavex atlavex
