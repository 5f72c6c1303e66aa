# SPDX-License-Identifier: MIT
def hello(name, count):
    return ' '.join(['hello', name] * count)
