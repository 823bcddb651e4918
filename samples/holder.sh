#!/bin/sh
# Tells who holds documents of SharePoint libraries, by the command's output and exit codes:
#   holder.sh https://docs.example.com/sites/a/Shared%20Documents/b.xlsx
set -u
if [ $# -eq 0 ]; then
  echo "usage: holder.sh URL..." >&2
  exit 2
fi
for url; do
  said=$(velandoc --no-input doc status "$url" 2>&1)
  case $? in
  0) echo "$url: nobody" ;;
  10) echo "$url: you" ;;
  11) echo "$url: $(printf '%s\n' "$said" | sed -n 's/.*by \(.*\)$/\1/p' | head -n 1)" ;;
  *) echo "$url: $said" ;;
  esac
done
