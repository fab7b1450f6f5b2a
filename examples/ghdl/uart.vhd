-- SPDX-License-Identifier: Apache-2.0
-- The serial port of ../uart in VHDL: the same instances with the same tasks, so that one run script
-- records both. Where VHDL keeps a word for itself, the name differs: `d` and `q` for `in` and
-- `out`, `data_bus` for `bus`, `selected` for `select`.
library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

-- A pulse on `tick` every `divisor` + 1 clocks; sixteen of them make one bit on the line.
entity baud_generator is
    port (
        clk     : in  std_logic;
        reset   : in  std_logic;
        divisor : in  std_logic_vector(0 to 7);
        tick    : out std_logic
    );
end entity;

architecture rtl of baud_generator is
    signal count : unsigned(7 downto 0);
begin
    process (clk)
    begin
        if rising_edge(clk) then
            if reset then
                count <= (others => '0');
                tick  <= '0';
            elsif count = unsigned(divisor) then
                count <= (others => '0');
                tick  <= '1';
            else
                count <= count + 1;
                tick  <= '0';
            end if;
        end if;
    end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;

-- One stored byte of a queue. It has no reset: it is unknown until it is first written.
entity queue_cell is
    port (
        clk   : in  std_logic;
        write : in  std_logic;
        d     : in  std_logic_vector(7 downto 0);
        q     : out std_logic_vector(7 downto 0)
    );
end entity;

architecture rtl of queue_cell is
begin
    process (clk)
    begin
        if rising_edge(clk) and write = '1' then
            q <= d;
        end if;
    end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

-- A queue of 2**ADDRESS_BITS bytes.
entity queue is
    generic (ADDRESS_BITS : positive := 2);
    port (
        clk   : in  std_logic;
        reset : in  std_logic;
        push  : in  std_logic;
        pop   : in  std_logic;
        d     : in  std_logic_vector(7 downto 0);
        q     : out std_logic_vector(7 downto 0);
        empty : out std_logic;
        full  : out std_logic
    );
end entity;

architecture rtl of queue is
    constant DEPTH : positive := 2 ** ADDRESS_BITS;
    subtype place is unsigned(ADDRESS_BITS downto 0);
    signal write_at, read_at : place;
    signal cells             : std_logic_vector(8 * DEPTH - 1 downto 0);

    function slot_of(at : place) return natural is
    begin
        if is_x(at) then
            return 0;
        end if;
        return to_integer(at(ADDRESS_BITS - 1 downto 0));
    end function;
begin
    empty <= write_at ?= read_at;
    full  <= write_at ?= (read_at xor to_unsigned(DEPTH, ADDRESS_BITS + 1));
    q     <= cells(8 * slot_of(read_at) + 7 downto 8 * slot_of(read_at));

    slot : for i in 0 to DEPTH - 1 generate
        signal write : std_logic;
    begin
        write <= push and not full and (write_at(ADDRESS_BITS - 1 downto 0) ?= i);
        store : entity work.queue_cell
            port map (clk => clk, write => write, d => d, q => cells(8 * i + 7 downto 8 * i));
    end generate;

    process (clk)
    begin
        if rising_edge(clk) then
            if reset then
                write_at <= (others => '0');
                read_at  <= (others => '0');
            else
                if push and not full then
                    write_at <= write_at + 1;
                end if;
                if pop and not empty then
                    read_at <= read_at + 1;
                end if;
            end if;
        end if;
    end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

-- Sends a start bit, eight data bits (lowest first), a parity bit and a stop bit.
entity transmitter is
    port (
        clk   : in  std_logic;
        reset : in  std_logic;
        tick  : in  std_logic;
        empty : in  std_logic;
        data  : in  std_logic_vector(7 downto 0);
        pop   : out std_logic;
        line  : out std_logic;
        busy  : out std_logic
    );
end entity;

architecture rtl of transmitter is
    signal shift     : std_logic_vector(10 downto 0);
    signal bits_left : unsigned(3 downto 0);
    signal phase     : unsigned(3 downto 0);
begin
    line <= shift(0) when busy = '1' else '1';

    process (clk)
    begin
        if rising_edge(clk) then
            if reset then
                pop       <= '0';
                busy      <= '0';
                bits_left <= (others => '0');
                phase     <= (others => '0');
            else
                pop <= '0';
                if not busy and not empty and not pop then
                    shift     <= '1' & xor data & data & '0';
                    bits_left <= to_unsigned(11, 4);
                    phase     <= (others => '0');
                    busy      <= '1';
                    pop       <= '1';
                elsif busy and tick then
                    phase <= phase + 1;
                    if phase = 15 then
                        shift     <= '1' & shift(10 downto 1);
                        bits_left <= bits_left - 1;
                        busy      <= bits_left ?/= to_unsigned(1, 4);
                    end if;
                end if;
            end if;
        end if;
    end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

-- Samples the line in the middle of each bit; `error` says that the parity or the stop bit was wrong.
entity receiver is
    port (
        clk   : in  std_logic;
        reset : in  std_logic;
        tick  : in  std_logic;
        line  : in  std_logic;
        push  : out std_logic;
        data  : out std_logic_vector(0 to 7);
        error : out std_logic
    );
end entity;

architecture rtl of receiver is
    signal seen      : std_logic_vector(0 to 1);
    signal shift     : std_logic_vector(9 downto 0);
    signal bits_left : unsigned(3 downto 0);
    signal phase     : unsigned(3 downto 0);
    signal active    : std_logic;
begin
    -- Index 0 is the highest bit here: the register file reads it so.
    data <= shift(7 downto 0);

    process (clk)
    begin
        if rising_edge(clk) then
            seen <= line & seen(0);
            if reset then
                push      <= '0';
                error     <= '0';
                active    <= '0';
                bits_left <= (others => '0');
                phase     <= (others => '0');
            else
                push <= '0';
                if not active then
                    phase <= (others => '0');
                    if tick and not seen(1) then
                        active    <= '1';
                        bits_left <= to_unsigned(11, 4);
                        phase     <= to_unsigned(1, 4);
                    end if;
                elsif tick then
                    phase <= phase + 1;
                    if phase = 8 then
                        shift     <= seen(1) & shift(9 downto 1);
                        bits_left <= bits_left - 1;
                        if bits_left = 1 then
                            active <= '0';
                            push   <= '1';
                            -- The shift register holds data and parity; the line is the stop bit.
                            error  <= xor shift(9 downto 1) or not seen(1);
                        end if;
                    end if;
                end if;
            end if;
        end if;
    end process;
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use ieee.numeric_std.all;

-- The whole port. Register 0 is the data queue, 1 the state, 2 the divisor of the baud generator.
entity uart is
    port (
        clk       : in    std_logic;
        reset     : in    std_logic;
        selected  : in    std_logic;
        write     : in    std_logic;
        address   : in    std_logic_vector(1 downto 0);
        data_bus  : inout std_logic_vector(7 downto 0);
        interrupt : out   std_logic;
        rxd       : in    std_logic;
        txd       : out   std_logic
    );
end entity;

architecture rtl of uart is
    signal divisor                               : std_logic_vector(7 downto 0);
    signal tick, tx_pop, tx_empty, tx_full       : std_logic;
    signal tx_busy, rx_push, rx_empty, rx_full   : std_logic;
    signal rx_error, reading, tx_push, rx_pop    : std_logic;
    signal tx_data, rx_data, rx_byte, answer     : std_logic_vector(7 downto 0);
begin
    reading <= selected and not write;
    tx_push <= selected and write and (address ?= "00");
    rx_pop  <= reading and (address ?= "00");

    -- Nobody drives the bus between two accesses: it is in high impedance then.
    data_bus  <= answer when reading = '1' else (others => 'Z');
    interrupt <= not rx_empty or rx_error;

    with address select answer <=
        rx_data                                                            when "00",
        "00" & rx_error & rx_full & rx_empty & tx_busy & tx_full & tx_empty when "01",
        divisor                                                            when "10",
        x"00"                                                              when others;

    process (clk)
    begin
        if rising_edge(clk) then
            if reset then
                divisor <= x"03";
            elsif selected and write and (address ?= "10") then
                divisor <= data_bus;
            end if;
        end if;
    end process;

    baud : entity work.baud_generator
        port map (clk => clk, reset => reset, divisor => divisor, tick => tick);

    tx_queue : entity work.queue
        generic map (ADDRESS_BITS => 2)
        port map (clk => clk, reset => reset, push => tx_push, pop => tx_pop, d => data_bus,
                  q => tx_data, empty => tx_empty, full => tx_full);
    tx : entity work.transmitter
        port map (clk => clk, reset => reset, tick => tick, empty => tx_empty, data => tx_data,
                  pop => tx_pop, line => txd, busy => tx_busy);
    rx : entity work.receiver
        port map (clk => clk, reset => reset, tick => tick, line => rxd, push => rx_push,
                  data => rx_byte, error => rx_error);
    rx_queue : entity work.queue
        generic map (ADDRESS_BITS => 1)
        port map (clk => clk, reset => reset, push => rx_push, pop => rx_pop, d => rx_byte,
                  q => rx_data, empty => rx_empty, full => rx_full);
end architecture;
