#!/bin/sh
# With standard error or output closed, the output file does not come to stand in their place.
printf 'Content-Transfer-Encoding: base64\n\nYWJj!\n' > damaged
mailstructure part --decode -o out 1 damaged 2>&-
echo "exit $?" && cat out && echo ']'
mailstructure part --decode -o another 1 damaged 0<&- 1>&- 2>&-
echo "exit $?" && cat another && echo ']'
mailstructure part 1 damaged >&-
echo "exit $?"
mailstructure part 1 <&-
echo "exit $?"
