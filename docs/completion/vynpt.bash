# Completion of vynpt's subcommands, options, files and values for bash. To have it in a shell:
#
#     source docs/completion/vynpt.bash
#
# The names of interfaces are those of the switch file that the command line names.
# shellcheck shell=bash

# What stands behind option $1 on the command line, also as --option=value.
_vynpt_value_of() {
    local i
    for ((i = 1; i < ${#COMP_WORDS[@]}; ++i)); do
        if [[ ${COMP_WORDS[i]} == "$1" ]]; then
            [[ ${COMP_WORDS[i + 1]-} == "=" ]] && ((++i))
            printf '%s\n' "${COMP_WORDS[i + 1]-}"
            return
        fi
    done
}

# The names of the switch's interfaces; with --ingress those that a packet can come in on.
_vynpt_interfaces() {
    local command=${COMP_WORDS[0]} switch
    switch=$(_vynpt_value_of --switch)
    [[ -n $switch ]] || return
    # The shell has not expanded the words yet.
    "${command/#\~\//$HOME/}" interfaces --switch "${switch/#\~\//$HOME/}" "$@" 2>/dev/null || true
}

# Offers those of the words behind the first argument that begin with it.
_vynpt_words() {
    local current=$1 word
    shift
    for word; do
        if [[ $word == "$current"* ]]; then
            COMPREPLY+=("$word")
        fi
    done
}

_vynpt_files() {
    local file
    compopt -o filenames 2>/dev/null || true
    while IFS= read -r file; do
        COMPREPLY+=("$file")
    done < <(compgen -f -- "$1")
}

# "Ethernet1,Eth" goes on behind its last comma.
_vynpt_list() {
    local current=$1 before="" words
    [[ $current != *,* ]] || before=${current%,*},
    compopt -o nospace 2>/dev/null || true
    mapfile -t words < <(_vynpt_interfaces)
    _vynpt_words "$current" "${words[@]/#/$before}"
}

_vynpt_options() {
    case $1 in
    trace)
        echo --switch --in --frame --hex --json --explain --write --record --expect --timeout --help \
            --ether-type --eth-dst --eth-src --vlan --arp-op --arp-sender-mac --arp-sender-ip \
            --arp-target-mac --arp-target-ip --ip-dst --ip-src --ttl --dscp --dont-fragment --proto \
            --sport --dport --tcp-flags --icmp-type --icmp-code --payload --length
        ;;
    interfaces) echo --switch --ingress --help ;;
    replay) echo --dump --help ;;
    ringlog) echo --follow --handle --level --help ;;
    *) echo --help ;;
    esac
}

# The value of option $1, begun with $2. Fails for an option that takes none or anything.
_vynpt_value() {
    local words
    case $1 in
    --switch | --write | --record) _vynpt_files "$2" ;;
    --in)
        mapfile -t words < <(_vynpt_interfaces --ingress)
        _vynpt_words "$2" "${words[@]}"
        ;;
    --expect) _vynpt_list "$2" ;;
    --proto) _vynpt_words "$2" tcp udp icmp icmpv6 ;;
    --arp-op) _vynpt_words "$2" request reply ;;
    --ether-type) _vynpt_words "$2" ipv4 ipv6 arp ;;
    --handle) _vynpt_words "$2" VynPtSm VynPtClientSm VynPtPktGenSm ;;
    --frame | --hex | --timeout | --level | --eth-* | --arp-* | --ip-* | --vlan | --ttl | --dscp | \
        --sport | --dport | --tcp-flags | --icmp-* | --payload | --length) ;;
    *) return 1 ;;
    esac
}

_vynpt() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local subcommand=${COMP_WORDS[1]} options
    COMPREPLY=()
    # "--in=Eth" is three words.
    if [[ $current == "=" ]]; then
        current=
    elif [[ $previous == "=" ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    if ((COMP_CWORD == 1)); then
        _vynpt_words "$current" trace interfaces replay ringlog --help
    elif ! _vynpt_value "$previous" "$current"; then
        if [[ $current == -* ]]; then
            read -ra options <<<"$(_vynpt_options "$subcommand" | tr '\n' ' ')"
            _vynpt_words "$current" "${options[@]}"
        elif [[ $subcommand != interfaces ]]; then
            _vynpt_files "$current"
        fi
    fi
}

complete -F _vynpt vynpt
