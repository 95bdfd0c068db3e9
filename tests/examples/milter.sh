# shellcheck shell=bash disable=SC2154 # the runner sets $program
# A real client of the milter protocol talks to the filter over a socket on loopback.

script=$(dirname "${BASH_SOURCE[0]}")/milter.lua
port=$(python3 -c 'import socket
listener = socket.socket()
listener.bind(("127.0.0.1", 0))
print(listener.getsockname()[1])')

timeout 60 miltertest -D program="$program" -D socket="inet:$port@127.0.0.1" -s "$script" ||
    echo "(status $?)"

echo '# Wrong usage:'
show "$program"
show "$program" inet:1@127.0.0.1
show "$program" inet:1@127.0.0.1 many
show "$program" nonsense:1 10 2>&1 | grep -v -i libmilter
