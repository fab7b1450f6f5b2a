-- SPDX-License-Identifier: Apache-2.0
-- VHDL: an entity hierarchy with ports of all modes, for- and if-generate, blocks, vectors of both
-- directions and odd ranges, numbers, enumerations, records, arrays, a bus with two drivers, pulses
-- of one delta cycle. The generic FAIL ends the simulation with a failure.
library ieee;
use ieee.std_logic_1164.all;

package kinds is
    type colour is (red, green, blue);
    type packet is record
        head : std_logic_vector(3 downto 0);
        flag : std_logic;
        kind : colour;
        size : integer range 0 to 15;
    end record;
    type bytes is array (natural range <>) of std_logic_vector(7 downto 0);
    type grid is array (0 to 1, 2 downto 1) of std_logic;
    signal in_package : std_logic := '0';
end package;

library ieee;
use ieee.std_logic_1164.all;
use work.kinds.all;

entity lane is
    generic (WIDTH : positive := 4);
    port (
        clk    : in     std_logic;
        enable : in     boolean;
        data   : in     std_logic_vector(WIDTH - 1 downto 0);
        left   : out    std_logic_vector(1 to WIDTH);
        line   : inout  std_logic_vector(3 downto 0);
        count  : buffer integer range 0 to 255
    );
end entity;

architecture rtl of lane is
    signal kept     : std_logic_vector(WIDTH + 2 downto 3) := (others => 'U');
    signal delayed  : std_logic := '0';
    signal pulse    : std_logic := '0';
    signal settled  : std_logic;
    signal two      : bit := '0';
    signal some     : bit_vector(0 to 2) := "010";
    signal hue      : colour := red;
    signal letter   : character := 'a';
    signal total    : integer := -3;
    signal few      : natural range 0 to 5 := 0;
    signal busy     : boolean := false;
    signal ratio    : real := 1.0;
    signal stamp    : time := 0 ns;
    signal whole    : packet := (head => "0000", flag => 'Z', kind => blue, size => 1);
    signal memory   : bytes(3 to 5) := (others => (others => '0'));
    signal cells    : grid := (others => (others => '0'));
    signal \odd.name[1]\ : std_logic := '0';
    signal lone     : std_logic_vector(0 downto 0) := "0";
begin
    -- A pulse of one delta cycle at every edge, which no recorder may count.
    delayed <= clk;
    pulse   <= clk xor delayed;
    settled <= pulse xor delayed;
    lone(0) <= data(0);
    left    <= data when enable else (others => 'Z');
    line    <= (others => 'Z') when count mod 3 = 0 else data(0) & data(1) & '0' & 'X';

    process (clk)
    begin
        if rising_edge(clk) then
            kept  <= kept(WIDTH + 1 downto 3) & data(data'high);
            two   <= not two;
            some  <= some(1 to 2) & (some(0) xor two);
            total <= total + 3;
            few   <= (few + 1) mod 6;
            busy  <= not busy;
            count <= (count + 7) mod 256;
            ratio <= ratio * 1.5;
            stamp <= now;
            letter <= character'val((character'pos(letter) + 1) mod 128);
            if hue = blue then hue <= red; else hue <= colour'succ(hue); end if;
            whole.flag <= data(0);
            whole.head <= whole.head(2 downto 0) & data(1);
            whole.size <= (whole.size + 1) mod 16;
            memory(3 + count mod 3)(count mod 8) <= data(0);
            cells(count mod 2, 1 + few mod 2) <= data(1);
            \odd.name[1]\ <= data(0);
        end if;
    end process;

    wide : if WIDTH > 3 generate
        signal upper : std_logic;
    begin
        upper <= data(3) after 2 ns;
    end generate;
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use work.kinds.all;

entity tb is
    generic (FAIL : boolean := false);
end entity;

architecture test of tb is
    signal clk    : std_logic := '0';
    signal enable : boolean := true;
    signal noise  : std_logic_vector(0 to 15) := x"1d2c";
    signal left   : std_logic_vector(3 downto 0);
    signal line   : std_logic_vector(3 downto 0);
    signal sum    : integer range 0 to 255;
    type outputs is array (0 to 1) of std_logic_vector(1 to 3);
    signal narrow : outputs;
    signal done   : boolean := false;
begin
    clk <= not clk after 5 ns when not done else '0';

    dut : entity work.lane
        generic map (WIDTH => 4)
        port map (clk => clk, enable => enable, data => noise(4 to 7), left => left, line => line,
                  count => sum);

    lanes : for i in 0 to 1 generate
        signal own    : std_logic;
        signal number : integer range 0 to 255;
    begin
        own <= noise(i) and clk;
        each : entity work.lane
            generic map (WIDTH => 3)
            port map (clk => own, enable => enable, data => noise(i + 1 to i + 3),
                      left => narrow(i), line => line, count => number);
    end generate;

    inner : block
        signal seen : std_logic := '0';
    begin
        seen <= not clk after 1 ns;
    end block;

    process (clk)
    begin
        if falling_edge(clk) then
            noise <= noise(1 to 15) & (noise(0) xor noise(2) xor noise(3) xor noise(5));
            enable <= noise(9) = '1';
        end if;
    end process;

    process
    begin
        wait for 600 ns;
        assert not FAIL report "the design has had enough" severity failure;
        wait for 400 ns;
        done <= true;
        wait;
    end process;
end architecture;
