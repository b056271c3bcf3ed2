#!/usr/bin/env python3
"""Recomputes the steps of explanations from the bytes on the wire.

Reads the JSON of one or more explanations (`kzm-modbus explain --json`, or Explanation::ToJson), one a line or as a
list, from the file that is its argument or from standard input. Prints every step that differs; ends with 1 if one does.
"""
import json
import math
import struct
import sys

SIGNED = {'int16-to-int32', 'int16-to-float', 'int32', 'int32-to-int64', 'int32-to-float', 'int64', 'int16',
          'int64-counter', 'int64-to-uint64', 'int64-to-float'}
FLOATS = {'float32', 'float32-to-uint8', 'float32-to-int64', 'float32-swapped', 'enum-float32', 'power-factor',
          'power-factor-quadrant', 'load-lag-lead', 'load-nature'}
WHOLE = {'uint16', 'int16-to-int32', 'uint16-to-int32', 'uint16-to-uint32', 'int32', 'uint32', 'int32-to-int64',
         'uint32-to-int64', 'int64', 'int16', 'int64-counter', 'uint64', 'int64-to-uint64', 'float32-to-uint8',
         'float32-to-int64'}
AS_IT_IS = {'int16-to-float', 'uint16-to-float', 'uint16-to-float-scaled', 'int32-to-float', 'uint32-to-float',
            'int8-to-float', 'int64-to-float', 'float32', 'float32-swapped', 'float64', 'power-factor'}


def swapped(data):
    words = [data[i:i + 2] for i in range(0, len(data), 2)]
    return b''.join(reversed(words)) if len(data) in (4, 6, 8) else data


def float32(bits):
    return struct.unpack('>f', struct.pack('>I', bits & 0xFFFFFFFF))[0]


def mod10k(kind, data):
    words = [int.from_bytes(data[i:i + 2], 'big', signed='-signed' in kind) for i in range(0, len(data), 2)]
    return sum(word * 10000 ** place for place, word in enumerate(reversed(words)))


def shifted(number, mask):
    """Labels count from the mask's lowest bit."""
    return number // (mask & -mask) if mask else 0


def raw_number(kind, data, mask):
    """The number in masked bytes; None for texts and dates."""
    number = int.from_bytes(data, 'big')
    if kind in FLOATS:
        raw = float32(int.from_bytes(swapped(data) if kind == 'float32-swapped' else data, 'big'))
        if kind == 'power-factor' and abs(raw) > 1:
            return float32(int.from_bytes(struct.pack('>f', math.copysign(2, raw) - raw), 'big'))
        return raw
    if kind == 'float64':
        return struct.unpack('>d', data)[0]
    if kind.startswith('mod10k'):
        return mod10k(kind, data)
    if kind in ('enum16', 'state16', 'enum32', 'state32'):
        return shifted(number, int.from_bytes(mask, 'big'))
    if kind in ('enum8', 'int8-to-float'):
        return int.from_bytes(data[-1:], 'big', signed=kind == 'int8-to-float')
    if kind.startswith(('text', 'datetime', 'enum-text')):
        return None
    return int.from_bytes(data, 'big', signed=kind in SIGNED)


def same(number, expected, tolerance=0.0):
    """JSON has NaN and infinities as text."""
    number = float(number)
    return math.isclose(number, expected, rel_tol=tolerance) or (math.isnan(number) and math.isnan(expected))


def value_of(kind, number, data):
    """The value that the number, or the bytes of a text, become; None where this script has no rule."""
    if kind in WHOLE:
        return math.copysign(math.floor(abs(number) + 0.5), number)
    if kind == 'text':
        return data.split(b'\0')[0].decode(errors='surrogateescape')
    return float(number) if kind in AS_IT_IS else None


def check_step(step, state, node):
    """What is wrong with a step, given the bytes and the number before it; updates these."""
    kind, name = node['registers']['type'], step['step']
    data = bytes.fromhex(step.get('bytes', ''))
    if name == 'received':
        state['bytes'] = data
    elif name == 'swapped':
        state['bytes'] = swapped(state['bytes'])
        return data != state['bytes'] and 'swapped'
    elif name == 'pattern' and 'reason' not in step:
        return int(step['text'], 16) == int.from_bytes(state['bytes'], 'big') and 'the pattern matches'
    elif name == 'pattern' and step['matches']:
        return int(step['text'], 16) != int.from_bytes(state['bytes'], 'big') and 'the pattern does not match'
    elif name == 'masked' and 'mask' in step:
        state['mask'] = bytes.fromhex(step['mask'])
        state['bytes'] = bytes(byte & mask for byte, mask in zip(state['bytes'], state['mask']))
        return data != state['bytes'] and 'masked'
    elif name in ('raw', 'label') and 'number' in step:
        number = raw_number(kind, state['bytes'], state.get('mask', b'\xff' * 8))
        state['number'] = number
        return number is not None and not same(step['number'], float(number)) and 'number'
    elif name == 'scaled':
        exponent = state.get('exponent')
        offset = step['offset']
        if kind.startswith('mod10k') and not kind.endswith('float') and step['factor'] == int(step['factor']):
            offset = math.trunc(offset)  # whole scales are computed in integers
        expected = (offset + state['number'] * step['factor'] if exponent is None
                    else math.floor(state['number'] * step['factor']) * 10.0 ** exponent)
        wrong = not same(float(step['number']), expected, 1e-7) and 'reason' not in step
        state['number'] = float(step['number'])
        return wrong and 'scaled'
    elif name == 'exponent':
        state['exponent'] = step['number']
    return False


def check(node, report):
    """Checks an explanation and its parts; returns how many steps were recomputed."""
    state, count = {}, 0
    for step in node.get('steps', []) if 'registers' in node else []:
        wrong = check_step(step, state, node)
        count += 1
        if wrong:
            report(f'{wrong}: {json.dumps(step)} of {json.dumps(node["registers"])}')
    if count and node['reason']['name'] == 'good' and not any(s['step'] == 'label' for s in node['steps']):
        expected = value_of(node['registers']['type'], state.get('number', 0), state['bytes'])
        if expected is not None and node['value'] != expected and not isinstance(expected, str) and not (
                abs(expected) > 2 ** 53 and math.isclose(node['value'], expected)):
            report(f'value {node["value"]}, not {expected}: {json.dumps(node["registers"])}')
    return count + sum(check(part, report) for part in node.get('parts', []))


def explanations(text):
    try:
        document = json.loads(text)
        return document if isinstance(document, list) else [document]
    except json.JSONDecodeError:
        return [json.loads(line) for line in text.splitlines() if line.strip()]


def main():
    with open(sys.argv[1], encoding='utf-8') if len(sys.argv) > 1 else sys.stdin as source:
        faults = []
        count = sum(check(explanation, faults.append) for explanation in explanations(source.read()))
    print(*faults, f'{count} steps recomputed, {len(faults)} differ', sep='\n')
    return 1 if faults or not count else 0


if __name__ == '__main__':
    sys.exit(main())
