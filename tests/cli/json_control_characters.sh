#!/bin/sh
# Nothing that a terminal acts on, that reorders text, or that some reader takes for the end of a line.
{
    printf 'X-Escape: \033[2J\a\177\nX-Second-Controls: \302\23331m \302\205\nX-Direction: \342\200\256 \342\201\246\n'
    printf 'X-Line: \342\200\250\nX-Quotes: "\\"\nX-Nul: x\0\n'
} > message
mailstructure json --flat message
