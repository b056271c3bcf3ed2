#!/usr/bin/python3
"""A Modbus TCP device on loopback, for the tests: prints its port and serves until its standard input ends."""

import asyncio
import logging
import os
import sys
import threading

from pymodbus.datastore import ModbusSequentialDataBlock, ModbusServerContext, ModbusSlaveContext
from pymodbus.server.async_io import ModbusTcpServer

ADDRESSES = range(2000)


def block(value_at):
    return ModbusSequentialDataBlock(0, [value_at(address) for address in ADDRESSES])


def end_with_input():
    sys.stdin.read()
    os._exit(0)


async def serve():
    device = ModbusSlaveContext(
        co=block(lambda address: address % 3 == 0),
        di=block(lambda address: address % 5 == 0),
        hr=block(lambda address: address * 31 + 1),
        ir=block(lambda address: 65535 - address),
        zero_mode=True,
    )
    server = ModbusTcpServer(ModbusServerContext(slaves=device, single=True), address=("127.0.0.1", 0))
    task = asyncio.ensure_future(server.serve_forever())
    await server.serving
    print(server.server.sockets[0].getsockname()[1], flush=True)
    await task


logging.disable()
threading.Thread(target=end_with_input, daemon=True).start()
asyncio.run(serve())
