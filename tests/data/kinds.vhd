-- SPDX-License-Identifier: Apache-2.0
-- What a GHW file can hold, in few bytes. kinds.ghw is made from it by
--     ghdl -a --std=08 kinds.vhd && ghdl -e --std=08 kinds &&
--     ghdl -r --std=08 kinds --wave=kinds.ghw --stop-time=4ns
library ieee;
use ieee.std_logic_1164.all;

package shared_kinds is
  type state is (idle, run, 'x', \odd Name\);
  type packet is record
    valid : std_logic;
    size : integer range 0 to 9;
  end record;
  type loose is record
    data : std_logic_vector;
    flag : bit;
  end record;
  type packets is array (natural range <>) of packet;
  type loose_words is array (natural range <>) of std_logic_vector;
  type table is array (natural range <>, state range <>) of boolean;
  signal everywhere : std_ulogic := '0';
end package;

library ieee;
use ieee.std_logic_1164.all;
use work.shared_kinds.all;

entity part is
  port (clock : in std_logic;
        pair : in bit_vector(1 downto 0);
        sum : out std_logic_vector(1 to 2);
        back : buffer state;
        pad : inout std_logic);
end entity;

architecture behaviour of part is
begin
  back <= state'val((state'pos(back) + 1) mod 4) when rising_edge(clock);
  sum <= (clock, '1');
end architecture;

library ieee;
use ieee.std_logic_1164.all;
use work.shared_kinds.all;

entity kinds is
end entity;

architecture behaviour of kinds is
  type charge is range 0 to 1000 units fc; pc = 1000 fc; end units;
  signal clock : std_logic := '0';
  signal a, b : bit;
  signal truth : boolean;
  signal number : integer := 7;
  signal falling : integer range 15 downto -3 := 15;
  signal ratio : real := 0.5;
  signal moment : time := 4 ns;
  signal amount : charge := 3 fc;
  signal sum : std_logic_vector(1 to 2);
  signal nothing : bit_vector(0 downto 1);
  signal ask : packets(0 to 1);
  signal part_of : loose(data(3 to 4));
  signal words : loose_words(5 downto 4)(1 downto 0);
  signal grid : table(0 to 1, run to 'x');
begin
  clock <= not clock after 1 ns;
  a <= not a after 2 ns;
  truth <= not truth after 3 ns;
  number <= -number after 1 ns;
  falling <= falling - 9 after 2 ns when falling > 0;
  ratio <= ratio * 2.0 after 2 ns;
  moment <= moment + 1 ns after 2 ns;
  amount <= amount * 2 after 3 ns;
  ask(1).size <= 5 after 1 ns;
  part_of.data <= (clock, 'L');
  words(4) <= "1Z" after 2 ns;
  grid(1, 'x') <= true after 1 ns;
  u : entity work.part port map (clock => clock, pair(1) => a, pair(0) => b, sum => sum,
                                 back => open, pad => open);
  copies : for i in 0 to 1 generate
    signal mine : std_logic_vector(1 downto 0);
  begin
    mine <= (0 => clock, 1 => 'H');
    only : if i = 1 generate
      v : entity work.part port map (clock => mine(0), pair => "01", sum => open, back => open,
                                     pad => open);
    end generate;
  end generate;
  nested : block
    signal inner : bit;
  begin
    named : process (a)
    begin
      inner <= not a;
    end process;
  end block;
end architecture;
