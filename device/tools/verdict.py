"""What a check ends with: every problem on a line of its own, the verdict, and an exit status of 1 if there is any."""
import sys


def end(path, problems):
    found = list(problems)
    for problem in found:
        print(problem)
    print(f'{path}: {"wrong" if found else "as it must be"}')
    sys.exit(bool(found))
