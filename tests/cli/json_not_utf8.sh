#!/bin/sh
# The bytes that are not UTF-8 come in base64 beside the value: Latin-1, a surrogate on its own, an overlong slash, a
# character cut short. What is UTF-8 comes as it is, a U+FFFD of the message's own too.
{
    printf 'Subject: Gr\374\337e\nX-Surrogate: \355\240\200\nX-Overlong: \300\257\nX-Cut: \342\202\n'
    printf 'X-Good: \360\237\252\234 \357\277\275\n'
    printf 'Content-Type: te\377xt/plain; charset=\351; name="\344.txt"\n\nx\n'
} > message
mailstructure json message
mailstructure json --flat message
